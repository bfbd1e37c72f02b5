#include "platform/linux/tools/osascript/display_notification.h"

#include <gtest/gtest.h>

#include <string>

#include "monitor/notification_script.h"
#include "platform/linux/tools/osascript/notification_service.h"

namespace quillmont {
namespace {

std::string scriptOf(const std::string& message, const std::string& title) {
  return "display notification \"" + message + "\" with title \"" + title +
         "\" sound name \"default\"";
}

TEST(DisplayNotification, ReadsMessageAndTitle) {
  const auto read = parseDisplayNotification(scriptOf("Hello", "World"));
  ASSERT_TRUE(read) << read.errorText();
  EXPECT_EQ(*read, (Notification{"World", "Hello"}));
}

TEST(DisplayNotification, BackslashBeforeQuoteEscapesIt) {
  const auto read = parseDisplayNotification(scriptOf(R"(A\"B)", R"(\"T\")"));
  ASSERT_TRUE(read) << read.errorText();
  EXPECT_EQ(*read, (Notification{"\"T\"", "A\"B"}));
}

TEST(DisplayNotification, EveryOtherBackslashIsItself) {
  const auto read = parseDisplayNotification(scriptOf(R"(a\b\\c\n)", "T"));
  ASSERT_TRUE(read) << read.errorText();
  EXPECT_EQ(read->message, R"(a\b\\c\n)");
}

TEST(DisplayNotification, NameThatEndsWithABackslashKeepsIt) {
  const auto read = parseDisplayNotification(scriptOf(R"(DMG 映像 \"abc\\" 因空闲)", "T"));
  ASSERT_TRUE(read) << read.errorText();
  EXPECT_EQ(read->message, R"(DMG 映像 "abc\" 因空闲)");
}

TEST(DisplayNotification, BackslashAsLastCharacterOfTheWholeTextRunsIntoTheQuote) {
  EXPECT_FALSE(parseDisplayNotification(scriptOf(R"(abc\)", "T")));
}

TEST(DisplayNotification, EmptyStringsAreStrings) {
  const auto read = parseDisplayNotification(scriptOf("", ""));
  ASSERT_TRUE(read) << read.errorText();
  EXPECT_EQ(*read, (Notification{"", ""}));
}

TEST(DisplayNotification, OddVolumeNamesComeThroughTheProgramsScript) {
  const std::string names[] = {"Backup 2",
                               "A\"B",
                               "\"",
                               "\"\"\"",
                               "\\",
                               "\\\\",
                               "a\\\"b",
                               "\\\"",
                               "two\nlines\r\n\t.",
                               "备份 映像 é \U0001F600",
                               "",
                               "' $(reboot) `x` %s <b>&amp;",
                               "\" with title \"x\" sound name \"default\"",
                               std::string(10'000, 'x'),
                               std::string(10'000, '"'),
                               std::string(10'000, '\\')};
  for (const auto& name : names) {
    const auto read = parseDisplayNotification(ejectionNotificationScript(name));
    ASSERT_TRUE(read) << name << ": " << read.errorText();
    EXPECT_EQ(read->message, "DMG 映像 \"" + name + "\" 因空闲已自动推出。");
    EXPECT_EQ(read->title, "磁盘已安全推出");
  }
}

TEST(DisplayNotification, RefusesEverythingElse) {
  const std::string good = scriptOf("m", "t");
  const std::string scripts[] = {
      "",
      "beep",
      "display notification",
      "display notification m with title t sound name default",
      "display notification \"m\"",
      "display notification \"m\" with title \"t\"",
      "display notification \"m\" with title \"t\" sound name \"Glass\"",
      "display notification \"m\" subtitle \"s\" with title \"t\" sound name \"default\"",
      "display  notification \"m\" with title \"t\" sound name \"default\"",
      "Display notification \"m\" with title \"t\" sound name \"default\"",
      "display notification \"m with title t",
      " " + good,
      good + " ",
      good + "\n" + good,
      good + " & do shell script \"x\""};
  for (const auto& script : scripts) EXPECT_FALSE(parseDisplayNotification(script)) << script;
}

TEST(DisplayNotification, EveryCutScriptIsRefused) {
  const auto script = scriptOf(R"(A\"B)", "T");
  for (std::size_t length = 0; length < script.size(); ++length) {
    EXPECT_FALSE(parseDisplayNotification(script.substr(0, length))) << length;
  }
}

TEST(DisplayNotification, ErrorTellsWhereItStopped) {
  const auto read = parseDisplayNotification("display notification \"m\" in red");
  ASSERT_FALSE(read);
  EXPECT_EQ(read.errorText(), "24: syntax error: expected “ with title ”");
}

TEST(NotificationBody, IsEscapedForAServiceThatReadsMarkup) {
  EXPECT_EQ(notificationBody("<b>\"R&D\"</b>", true), "&lt;b&gt;\"R&amp;D\"&lt;/b&gt;");
}

TEST(NotificationBody, IsPlainForAnyOtherService) {
  EXPECT_EQ(notificationBody("<b>\"R&D\"</b>", false), "<b>\"R&D\"</b>");
}

}  // namespace
}  // namespace quillmont
