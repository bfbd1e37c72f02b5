#include "platform/posix/log_text.h"

#include <gtest/gtest.h>

namespace quillmont {
namespace {

TEST(LogText, ControlCharactersAreEscapedAndNothingElseIs) {
  EXPECT_EQ(textOfOneLine(std::string("a\nb\tc\x1b[2J\x7f\r\\") + '\0' + "磁盘 100%"),
            "a\\nb\\x09c\\x1b[2J\\x7f\\x0d\\\\x00磁盘 100%");
  EXPECT_EQ(textOfOneLine(""), "");
}

}  // namespace
}  // namespace quillmont
