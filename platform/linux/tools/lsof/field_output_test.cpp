#include "platform/linux/tools/lsof/field_output.h"

#include <gtest/gtest.h>

namespace quillmont {
namespace {

TEST(FieldOutput, PlainNamesStayAsTheyAre) {
  EXPECT_EQ(fieldValue("/Volumes/My \"Disk\" (2)/a'b%$"), "/Volumes/My \"Disk\" (2)/a'b%$");
  EXPECT_EQ(fieldValue(""), "");
}

TEST(FieldOutput, Utf8StaysAsItIs) {
  EXPECT_EQ(fieldValue("映像 é \U0001F600"), "映像 é \U0001F600");
  EXPECT_EQ(fieldValue("\u00a0\u200b\U0010FFFD"), "\u00a0\u200b\U0010FFFD");
}

TEST(FieldOutput, NewlineTabAndFriendsHaveLetters) {
  EXPECT_EQ(fieldValue("a\nb\tc\rd\be\ff"), R"(a\nb\tc\rd\be\ff)");
}

TEST(FieldOutput, BackslashIsDoubled) {
  EXPECT_EQ(fieldValue(R"(a\nb\)"), R"(a\\nb\\)");
}

TEST(FieldOutput, OtherControlCharactersHaveACaret) {
  EXPECT_EQ(fieldValue("\x01\x07\x0b\x1a\x1b\x1c\x1d\x1e\x1f"), R"(^A^G^K^Z^[^\^]^^^_)");
}

TEST(FieldOutput, DeleteIsHexadecimal) {
  EXPECT_EQ(fieldValue("a\x7f"), R"(a\x7f)");
}

TEST(FieldOutput, InvalidUtf8IsHexadecimal) {
  EXPECT_EQ(fieldValue("a\x80z"), R"(a\x80z)");
  EXPECT_EQ(fieldValue("\xff\xfe"), R"(\xff\xfe)");
  EXPECT_EQ(fieldValue("\xe6\x98"), R"(\xe6\x98)");
  EXPECT_EQ(fieldValue("\xe6\x98z"), R"(\xe6\x98z)");
  EXPECT_EQ(fieldValue("\xc0\xaf"), R"(\xc0\xaf)");
  EXPECT_EQ(fieldValue("\xed\xa0\x80"), R"(\xed\xa0\x80)");
  EXPECT_EQ(fieldValue("\xf4\x90\x80\x80"), R"(\xf4\x90\x80\x80)");
}

TEST(FieldOutput, CharactersThatEndALineAreHexadecimal) {
  EXPECT_EQ(fieldValue("a\u0085b\u2028c\u2029d"), R"(a\xc2\x85b\xe2\x80\xa8c\xe2\x80\xa9d)");
}

TEST(FieldOutput, FieldIsOneTaggedLine) {
  std::string output = "p1\n";
  appendField(output, 'c', "a\nb");
  EXPECT_EQ(output, "p1\nca\\nb\n");
}

}  // namespace
}  // namespace quillmont
