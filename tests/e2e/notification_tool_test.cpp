// The script runner, on a bus of the test's own.

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <memory>

#include "monitor/notification_script.h"
#include "platform/linux/tools/osascript/notification_service.h"
#include "platform/posix/Descriptor.h"
#include "tests/support/NotificationRecorder.h"
#include "tests/support/PrivateBus.h"

namespace quillmont {
namespace {

using testing::environmentWith;
using testing::NotificationRecorder;
using testing::PrivateBus;
using Hints = std::map<std::string, std::string>;

constexpr char kTool[] = QUILLMONT_BUNDLE "/Contents/libexec/osascript";

/// Sets a variable of the test's own process and puts the old value back.
class ScopedVariable {
 public:
  ScopedVariable(const char* name, const std::string& value) : name_(name) {
    if (const char* old = getenv(name)) old_ = old;
    setenv(name, value.c_str(), 1);
  }
  ~ScopedVariable() {
    if (old_.empty()) {
      unsetenv(name_);
    } else {
      setenv(name_, old_.c_str(), 1);
    }
  }

 private:
  const char* name_;
  std::string old_;
};

bool isOneLine(const std::string& text) {
  return text.size() > 1 && text.find('\n') == text.size() - 1;
}

class NotificationTool : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!PrivateBus::available()) GTEST_SKIP() << "no dbus-daemon on this machine";
    bus_ = std::make_unique<PrivateBus>();
  }

  testing::Outcome announce(const std::string& volumeName) {
    return testing::run({kTool, "-e", ejectionNotificationScript(volumeName)}, bus_->environment());
  }

  std::unique_ptr<PrivateBus> bus_;
};

TEST_F(NotificationTool, AnnouncesAnEjectionWithTitleBodyAndDefaultSound) {
  const NotificationRecorder recorder(bus_->address());
  const auto outcome = announce("Backup 2");
  EXPECT_EQ(outcome.status, 0) << outcome.standardError;
  EXPECT_EQ(outcome.standardOutput + outcome.standardError, "");
  const auto seen = recorder.notifications();
  ASSERT_EQ(seen.size(), 1u);
  EXPECT_EQ(seen[0].application, "Quillmont");
  EXPECT_EQ(seen[0].icon, "drive-optical");
  EXPECT_EQ(seen[0].title, "磁盘已安全推出");
  EXPECT_EQ(seen[0].body, "DMG 映像 \"Backup 2\" 因空闲已自动推出。");
  EXPECT_EQ(seen[0].hints, (Hints{{"desktop-entry", "s quillmont"},
                                  {"sound-name", "s message-new-instant"},
                                  {"urgency", "y 1"}}));
  EXPECT_EQ(seen[0].timeout, -1);
}

TEST_F(NotificationTool, OddVolumeNamesAreShownAsTheyAreCalled) {
  const NotificationRecorder recorder(bus_->address());
  const std::string names[] = {"A\"B", "back\\slash\\", "two\nlines", "<b>R&D</b>", "映像", ""};
  std::size_t count = 0;
  for (const auto& name : names) {
    const auto outcome = announce(name);
    ASSERT_EQ(outcome.status, 0) << outcome.standardError;
    const auto seen = recorder.notifications();
    ASSERT_EQ(seen.size(), ++count);
    EXPECT_EQ(seen.back().body, "DMG 映像 \"" + name + "\" 因空闲已自动推出。");
  }
}

TEST_F(NotificationTool, BodyIsEscapedForAServiceThatReadsMarkup) {
  const NotificationRecorder recorder(bus_->address(), {"actions", "body", "body-markup"});
  ASSERT_EQ(announce("<b>R&D</b>").status, 0);
  const auto seen = recorder.notifications();
  ASSERT_EQ(seen.size(), 1u);
  EXPECT_EQ(seen[0].body, "DMG 映像 \"&lt;b&gt;R&amp;D&lt;/b&gt;\" 因空闲已自动推出。");
}

TEST_F(NotificationTool, BusWithoutAServiceIsAnErrorInOneLine) {
  const auto outcome = announce("x");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(isOneLine(outcome.standardError)) << outcome.standardError;
}

TEST_F(NotificationTool, BusIsFoundInTheRuntimeFolder) {
  const NotificationRecorder recorder(bus_->address());
  const std::string prefix = "unix:path=";
  const auto socketPath = bus_->address().substr(prefix.size());
  const auto environment =
      environmentWith({{"DBUS_SESSION_BUS_ADDRESS", ""},
                       {"XDG_RUNTIME_DIR", socketPath.substr(0, socketPath.rfind('/'))}});
  const auto outcome = testing::run({kTool, "-e", ejectionNotificationScript("x")}, environment);
  EXPECT_EQ(outcome.status, 0) << outcome.standardError;
  EXPECT_EQ(recorder.notifications().size(), 1u);
}

TEST_F(NotificationTool, TextThatIsNoUtf8IsRefusedAndNotSent) {
  const NotificationRecorder recorder(bus_->address());
  const auto outcome = announce("\xff");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(isOneLine(outcome.standardError)) << outcome.standardError;
  EXPECT_TRUE(recorder.notifications().empty());
}

TEST_F(NotificationTool, AnotherScriptIsRefusedAndNotSent) {
  const NotificationRecorder recorder(bus_->address());
  const auto outcome =
      testing::run({kTool, "-e", "do shell script \"reboot\""}, bus_->environment());
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(isOneLine(outcome.standardError)) << outcome.standardError;
  EXPECT_TRUE(recorder.notifications().empty());
}

TEST(NotificationToolWithoutABus, EndsWithAnErrorAndStartsNoBus) {
  const testing::TemporaryFolder runtime;
  const auto environment = environmentWith(
      {{"DBUS_SESSION_BUS_ADDRESS", ""}, {"XDG_RUNTIME_DIR", runtime.path()}, {"DISPLAY", ":99"}});
  const auto outcome = testing::run({kTool, "-e", ejectionNotificationScript("x")}, environment);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.standardError, "osascript: there is no session bus\n");
}

TEST(NotificationToolWithoutABus, AddressWithoutABusIsAnError) {
  const testing::TemporaryFolder folder;
  const auto environment =
      environmentWith({{"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + folder.path() + "/bus"}});
  const auto outcome = testing::run({kTool, "-e", ejectionNotificationScript("x")}, environment);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(isOneLine(outcome.standardError)) << outcome.standardError;
}

TEST(NotificationToolWithoutABus, BusThatAcceptsAndSaysNothingIsGivenUp) {
  const testing::TemporaryFolder folder;
  const auto path = folder.path() + "/bus";
  const Descriptor listener(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  ASSERT_EQ(bind(listener.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  ASSERT_EQ(listen(listener.get(), 5), 0);
  const ScopedVariable bus("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + path);
  const auto delivered = deliverNotification({"title", "message"}, std::chrono::seconds(1));
  ASSERT_FALSE(delivered);
  EXPECT_EQ(delivered.errorText(), "the session bus does not answer");
}

TEST(NotificationToolUsage, OtherArgumentsAreRefused) {
  const std::vector<std::vector<std::string>> commands = {
      {kTool}, {kTool, "-e"}, {kTool, "script"}, {kTool, "-l", "x"}, {kTool, "-e", "x", "y"}};
  for (const auto& command : commands) {
    const auto outcome = testing::run(command);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_TRUE(isOneLine(outcome.standardError)) << outcome.standardError;
  }
}

}  // namespace
}  // namespace quillmont
