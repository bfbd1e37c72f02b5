#include "platform/utf8.h"

#include <gtest/gtest.h>

#include <string>

namespace quillmont {
namespace {

TEST(Utf8, ReadsCharactersOfEveryLength) {
  const auto reads = [](std::string_view bytes, std::size_t length, char32_t point) {
    const auto character = firstUtf8Character(bytes);
    EXPECT_EQ(character.length, length) << bytes;
    EXPECT_EQ(character.point, point) << bytes;
  };
  reads("ax", 1, U'a');
  reads("\x7F", 1, 0x7F);
  reads("\xC2\x80", 2, 0x80);
  reads("\xDF\xBFx", 2, 0x7FF);
  reads("\xE0\xA0\x80", 3, 0x800);
  reads("盘", 3, U'盘');
  reads("\xEF\xBF\xBF", 3, 0xFFFF);
  reads("\xF0\x90\x80\x80", 4, 0x10000);
  reads("\xF4\x8F\xBF\xBF", 4, 0x10FFFF);
}

TEST(Utf8, RefusesWhatIsNotWellFormed) {
  for (const std::string bad :
       {"\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xC2", "\xC2x", "\xE0\x80\x80", "\xE0\x9F\xBF",
        "\xE4\xB8", "\xED\xA0\x80", "\xED\xBF\xBF", "\xF0\x80\x80\x80", "\xF0\x8F\xBF\xBF",
        "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF"}) {
    EXPECT_EQ(firstUtf8Character(bad).length, 0u) << bad;
    EXPECT_FALSE(isValidUtf8(bad)) << bad;
    EXPECT_FALSE(isValidUtf8("text " + bad)) << bad;
  }
  EXPECT_EQ(firstUtf8Character("").length, 0u);
}

TEST(Utf8, AcceptsWholeTexts) {
  EXPECT_TRUE(isValidUtf8(""));
  EXPECT_TRUE(isValidUtf8("plain"));
  EXPECT_TRUE(isValidUtf8("磁盘 映像 \xF0\x9F\x92\xBF end"));
}

TEST(Utf8, FindsOneBadByteAtEveryPlaceOfALongText) {
  const std::string text(40, 'a');
  ASSERT_TRUE(isValidUtf8(text));
  for (std::size_t at = 0; at < text.size(); ++at) {
    auto bad = text;
    bad[at] = '\xFF';
    EXPECT_FALSE(isValidUtf8(bad)) << at;
  }
}

}  // namespace
}  // namespace quillmont
