#include "platform/macos/strings.h"

#include <gtest/gtest.h>

namespace quillmont {
namespace {

TEST(Strings, GoToFoundationAndBackUnchanged) {
  @autoreleasepool {
    const std::string text = "设计稿 🎨 Café\0after a zero", whole(text.data(), text.size());
    EXPECT_EQ(utf8String(foundationString(whole)), whole);
    EXPECT_EQ([foundationString("设计稿") length], 3U);
    EXPECT_EQ(utf8String(foundationString("")), "");
  }
}

TEST(Strings, ReadBytesThatAreNoUtf8AsLatin1) {
  @autoreleasepool {
    EXPECT_EQ(utf8String(foundationString("caf\xE9")), "café");
  }
}

TEST(Strings, AnswerNothingForNil) {
  EXPECT_EQ(utf8String(nil), "");
}

}  // namespace
}  // namespace quillmont
