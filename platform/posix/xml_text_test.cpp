#include "platform/posix/xml_text.h"

#include <gtest/gtest.h>

#include <string>

namespace quillmont {
namespace {

TEST(XmlText, LengthIsThatOfTheFirstCharacterAlone) {
  EXPECT_EQ(xmlCharacterLength("ab"), 1u);
  EXPECT_EQ(xmlCharacterLength("\u00e9b"), 2u);
  EXPECT_EQ(xmlCharacterLength("\u78c1b"), 3u);
  EXPECT_EQ(xmlCharacterLength("\U0001F4BFb"), 4u);
}

TEST(XmlText, FirstAndLastCharactersOfEachLengthCount) {
  EXPECT_EQ(xmlCharacterLength("\x7F"), 1u);
  EXPECT_EQ(xmlCharacterLength("\xC2\x80"), 2u);
  EXPECT_EQ(xmlCharacterLength("\xDF\xBF"), 2u);
  EXPECT_EQ(xmlCharacterLength("\xE0\xA0\x80"), 3u);
  EXPECT_EQ(xmlCharacterLength("\xED\x9F\xBF"), 3u);
  EXPECT_EQ(xmlCharacterLength("\xEE\x80\x80"), 3u);
  EXPECT_EQ(xmlCharacterLength("\xEF\xBF\xBD"), 3u);
  EXPECT_EQ(xmlCharacterLength("\xF0\x90\x80\x80"), 4u);
  EXPECT_EQ(xmlCharacterLength("\xF4\x8F\xBF\xBF"), 4u);
}

TEST(XmlText, OfTheControlCharactersOnlyTabAndLineEndsCount) {
  for (int code = 0; code < 0x20; ++code) {
    const bool allowed = code == '\t' || code == '\n' || code == '\r';
    EXPECT_EQ(xmlCharacterLength(std::string(1, static_cast<char>(code))), allowed ? 1u : 0u);
  }
}

TEST(XmlText, IllFormedAndForbiddenSequencesDoNotCount) {
  for (const char* bytes : {"", "\x80", "\xC3", "\xC3(", "\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF",
                            "\xE7\xA3", "\xE7\xA3(", "\xED\xA0\x80", "\xEF\xBF\xBE", "\xEF\xBF\xBF",
                            "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF"}) {
    EXPECT_EQ(xmlCharacterLength(bytes), 0u);
  }
}

}  // namespace
}  // namespace quillmont
