#include "platform/linux/tools/hdiutil/report.h"

#include <gtest/gtest.h>

namespace quillmont {
namespace {

TEST(ImageToolReport, NameCannotForgeALine) {
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(reportFailure("detach", "busy: it holds a\nb\x1b[2J"), kFailure);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(),
            "hdiutil: detach failed - busy: it holds a\\nb\\x1b[2J\n");
}

}  // namespace
}  // namespace quillmont
