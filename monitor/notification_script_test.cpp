#include "monitor/notification_script.h"

#include <gtest/gtest.h>

namespace quillmont {
namespace {

TEST(NotificationScript, PlainName) {
  EXPECT_EQ(ejectionNotificationScript("Backup 2"),
            R"(display notification "DMG 映像 \"Backup 2\" 因空闲已自动推出。")"
            R"( with title "磁盘已安全推出" sound name "default")");
}

TEST(NotificationScript, DoubleQuoteInTheNameIsEscaped) {
  EXPECT_EQ(ejectionNotificationScript("A\"B"),
            R"(display notification "DMG 映像 \"A\"B\" 因空闲已自动推出。")"
            R"( with title "磁盘已安全推出" sound name "default")");
}

TEST(NotificationScript, BackslashInTheNameGoesThroughSingle) {
  EXPECT_EQ(ejectionNotificationScript("A\\B"),
            R"(display notification "DMG 映像 \"A\B\" 因空闲已自动推出。")"
            R"( with title "磁盘已安全推出" sound name "default")");
}

}  // namespace
}  // namespace quillmont
