#include "platform/linux/base64.h"

#include <gtest/gtest.h>

#include <utility>

namespace quillmont {
namespace {

TEST(Base64, EncodesAndDecodesTheStandardsExamples) {
  const std::pair<const char*, const char*> examples[] = {{"", ""},
                                                          {"f", "Zg=="},
                                                          {"fo", "Zm8="},
                                                          {"foo", "Zm9v"},
                                                          {"foob", "Zm9vYg=="},
                                                          {"fooba", "Zm9vYmE="},
                                                          {"foobar", "Zm9vYmFy"}};
  for (const auto& [bytes, text] : examples) {
    EXPECT_EQ(base64(bytes), text);
    EXPECT_EQ(bytesOfBase64(text), bytes);
  }
}

TEST(Base64, EveryByteComesBack) {
  std::string bytes;
  for (int i = 0; i < 256; ++i) bytes += static_cast<char>(i);
  EXPECT_EQ(bytesOfBase64(base64(bytes)), bytes);
}

TEST(Base64, WhiteSpaceMayStandAnywhere) {
  EXPECT_EQ(bytesOfBase64("\n\tZ m\r\n9vYg= =\n"), "foob");
}

TEST(Base64, PaddingInTheMiddleAndTooMuchOfItAreRefused) {
  for (const char* text : {"Zg", "Zg=", "Zg===", "Z===", "====", "=", "Zg==Zg==", "Zm=9"}) {
    EXPECT_EQ(bytesOfBase64(text), std::nullopt) << text;
  }
}

TEST(Base64, BitsThatBelongToNoByteAreRefused) {
  EXPECT_EQ(bytesOfBase64("Zh=="), std::nullopt);
  EXPECT_EQ(bytesOfBase64("Zm9="), std::nullopt);
}

}  // namespace
}  // namespace quillmont
