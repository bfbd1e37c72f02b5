#include <gmock/gmock.h>

#include "tests/support/TestHost.h"

namespace quillmont {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using testing::FakeDiskImages;
using ::testing::IsEmpty;
using testing::OpenMonitor;
using testing::TestHost;
using testing::ToolRun;

constexpr std::chrono::microseconds kHalfASecond{500'000};
constexpr std::chrono::microseconds kTenthOfASecond{100'000};

class Ejection : public ::testing::Test {
 protected:
  std::vector<Command> notifications() { return system.processes.launchesOf("/usr/bin/osascript"); }

  /// Whether waitForPendingEjects() finds nothing to wait for.
  bool noEjectPending() {
    const auto before = system.clock.sleeps.size();
    monitor->waitForPendingEjects();
    return system.clock.sleeps.size() == before;
  }

  TestHost system;
  FakeDiskImages images{system};
  ConfigManager config{system.host()};
  std::shared_ptr<OpenMonitor> monitor = QuillmontDaemon::make<OpenMonitor>(system.host(), config);
};

TEST_F(Ejection, DetachedAndGoneIsLoggedAndNotified) {
  images.attach("Backup");
  monitor->eject("/Volumes/Backup", "Backup");
  const auto launches = system.processes.launches;
  ASSERT_EQ(launches.size(), 3u);
  EXPECT_EQ(launches[0].path, "/usr/bin/hdiutil");
  EXPECT_THAT(launches[0].arguments, ElementsAre("detach", "/Volumes/Backup", "-force"));
  EXPECT_EQ(launches[0].standardOutput, ChildOutput::inherit);
  EXPECT_EQ(launches[0].standardError, ChildOutput::inherit);
  EXPECT_THAT(launches[1].arguments, ElementsAre("info", "-plist"));
  EXPECT_EQ(launches[2].path, "/usr/bin/osascript");
  EXPECT_THAT(launches[2].arguments,
              ElementsAre("-e", R"(display notification "DMG 映像 \"Backup\" 因空闲已自动推出。")"
                                R"( with title "磁盘已安全推出" sound name "default")"));
  EXPECT_THAT(system.log.lines,
              ElementsAre("Successfully ejected and verified detached: /Volumes/Backup"));
  EXPECT_THAT(system.clock.sleeps, ElementsAre(kHalfASecond));
  EXPECT_TRUE(noEjectPending());
}

TEST_F(Ejection, NotificationIsNotWaitedFor) {
  images.attach("Backup");
  monitor->eject("/Volumes/Backup", "Backup");
  ASSERT_EQ(system.processes.launches.back().path, "/usr/bin/osascript");
  EXPECT_FALSE(system.processes.waitedFor.contains(system.processes.launches.size() - 1));
}

TEST_F(Ejection, ImageThatStaysListedIsLookedAtSixTimesAndNotAnnounced) {
  images.attach("Backup");
  images.detachReally = false;
  std::vector<std::size_t> sleepsBeforeEachScan;
  auto& tool = system.processes.tools["/usr/bin/hdiutil"];
  tool = [&, honest = tool](const Command& command) {
    if (command.arguments.front() == "info") {
      sleepsBeforeEachScan.push_back(system.clock.sleeps.size());
    }
    return honest(command);
  };
  monitor->eject("/Volumes/Backup", "Backup");
  EXPECT_EQ(images.scans, 6);
  EXPECT_THAT(sleepsBeforeEachScan, ElementsAre(1, 2, 3, 4, 5, 6));
  EXPECT_EQ(system.clock.sleeps.size(), 6u);
  EXPECT_THAT(system.clock.sleeps, Each(kHalfASecond));
  EXPECT_THAT(system.log.lines,
              ElementsAre("Warning: hdiutil detach returned 0, but mount point is still attached "
                          "(possible unmount-only state): /Volumes/Backup"));
  EXPECT_THAT(notifications(), IsEmpty());
  EXPECT_TRUE(noEjectPending());
}

TEST_F(Ejection, ImageThatGoesLateIsAnnouncedWhenItIsGone) {
  images.attach("Backup");
  images.detachReally = false;
  auto& tool = system.processes.tools["/usr/bin/hdiutil"];
  tool = [this, honest = tool](const Command& command) {
    if (images.scans == 2) images.removeImage("/Volumes/Backup");
    return honest(command);
  };
  monitor->eject("/Volumes/Backup", "Backup");
  EXPECT_EQ(images.scans, 3);
  EXPECT_EQ(notifications().size(), 1u);
}

TEST_F(Ejection, MountPointsAreComparedExactly) {
  images.attach("Backup 2");
  images.attach("backup");
  images.detachReally = false;
  monitor->eject("/Volumes/Backup", "Backup");
  EXPECT_EQ(images.scans, 1);
  EXPECT_EQ(notifications().size(), 1u);
}

TEST_F(Ejection, FailureOfTheToolIsLoggedWithItsStatusAndNotVerified) {
  for (const int status : {1, 16}) {
    system.log.lines.clear();
    images.detachStatus = status;
    monitor->eject("/Volumes/X", "X");
    EXPECT_THAT(system.log.lines,
                ElementsAre("Failed to eject: /Volumes/X. Code: process termination status " +
                            std::to_string(status)));
  }
  EXPECT_EQ(images.scans, 0);
  EXPECT_THAT(system.clock.sleeps, IsEmpty());
  EXPECT_THAT(notifications(), IsEmpty());
  EXPECT_TRUE(noEjectPending());
}

TEST_F(Ejection, ToolThatCannotBeStartedIsLogged) {
  system.processes.tools.erase("/usr/bin/hdiutil");
  monitor->eject("/Volumes/X", "X");
  EXPECT_THAT(system.log.lines,
              ElementsAre("Exception ejecting /Volumes/X: No such file or directory"));
  EXPECT_THAT(notifications(), IsEmpty());
  EXPECT_TRUE(noEjectPending());
}

TEST_F(Ejection, NotificationToolThatCannotBeStartedIsNotMentioned) {
  images.attach("Backup");
  system.processes.tools.erase("/usr/bin/osascript");
  monitor->eject("/Volumes/Backup", "Backup");
  EXPECT_THAT(system.log.lines,
              ElementsAre("Successfully ejected and verified detached: /Volumes/Backup"));
  EXPECT_TRUE(noEjectPending());
}

TEST_F(Ejection, FailedVerificationScanCountsAsGone) {
  images.attach("Backup");
  auto& tool = system.processes.tools["/usr/bin/hdiutil"];
  tool = [honest = tool](const Command& command) {
    return command.arguments.front() == "info" ? ToolRun{.output = "garbage"} : honest(command);
  };
  monitor->eject("/Volumes/Backup", "Backup");
  EXPECT_EQ(notifications().size(), 1u);
}

TEST_F(Ejection, NothingPendingIsOneLookWithoutSleeping) {
  monitor->waitForPendingEjects();
  EXPECT_THAT(system.clock.sleeps, IsEmpty());
}

TEST_F(Ejection, EjectionThatNeverEndsIsWaitedForThirtyTimes) {
  std::size_t sleepsBefore = 0;
  system.processes.tools["/usr/bin/hdiutil"] = [&](const Command&) {
    sleepsBefore = system.clock.sleeps.size();
    monitor->waitForPendingEjects();
    return ToolRun{.status = 1};
  };
  monitor->eject("/Volumes/X", "X");
  const std::vector<std::chrono::microseconds> pauses(
      system.clock.sleeps.begin() + static_cast<std::ptrdiff_t>(sleepsBefore),
      system.clock.sleeps.end());
  EXPECT_EQ(pauses.size(), 30u);
  EXPECT_THAT(pauses, Each(kTenthOfASecond));
}

TEST_F(Ejection, QueuedEjectionIsNotWaitedFor) {
  monitor->userForceEject("/Volumes/X", "X");
  EXPECT_TRUE(noEjectPending());
}

TEST_F(Ejection, UserEjectsWhateverTheSettingsSayAndACycleFollows) {
  images.attach("Backup").users = {"bash"};
  config.setIsEnabled(false);
  config.excludeImage("/Users/user/Backup.dmg");
  system.settle();
  ASSERT_EQ(monitor->mountedImages().size(), 1u);

  monitor->userForceEject("/Volumes/Backup", "Backup");
  EXPECT_EQ(images.attached.size(), 1u) << "nothing happens before the queue runs";
  system.settle();
  EXPECT_THAT(images.attached, IsEmpty());
  EXPECT_THAT(monitor->mountedImages(), IsEmpty());
  EXPECT_EQ(notifications().size(), 1u);
}

TEST_F(Ejection, UserEjectOfAReleasedMonitorDoesNothing) {
  images.attach("Backup");
  monitor->userForceEject("/Volumes/Backup", "Backup");
  monitor.reset();
  system.settle();
  EXPECT_EQ(images.attached.size(), 1u);
  EXPECT_THAT(system.processes.launches, IsEmpty());
}

TEST_F(Ejection, RequestForAnImageThatIsGoneIsTolerated) {
  images.detachStatus = 1;
  monitor->eject("/Volumes/Gone", "Gone");
  EXPECT_EQ(system.log.lines.size(), 1u);
  EXPECT_THAT(notifications(), IsEmpty());
}

}  // namespace
}  // namespace quillmont
