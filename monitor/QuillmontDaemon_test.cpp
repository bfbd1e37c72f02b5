#include "monitor/QuillmontDaemon.h"

#include <gmock/gmock.h>

#include <utility>

#include "tests/support/TestHost.h"

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using testing::FakeDiskImages;
using ::testing::IsEmpty;
using testing::OpenMonitor;
using testing::TestHost;

class Monitor : public ::testing::Test {
 protected:
  /// The monitor as it stands after its first cycle.
  OpenMonitor& start() {
    monitor_ = QuillmontDaemon::make<OpenMonitor>(system.host(), config);
    system.settle();
    return *monitor_;
  }

  void release() { monitor_.reset(); }

  double idle(std::size_t position = 0) {
    return monitor_->mountedImages().at(position).idleSeconds;
  }

  std::vector<std::string> names() {
    std::vector<std::string> result;
    for (const auto& image : monitor_->mountedImages()) result.push_back(image.volumeName);
    return result;
  }

  std::size_t detaches() {
    std::size_t count = 0;
    for (const auto& command : system.processes.launchesOf("/usr/bin/hdiutil")) {
      count += command.arguments.front() == "detach" ? 1 : 0;
    }
    return count;
  }

  TestHost system;
  FakeDiskImages images{system};
  ConfigManager config{system.host()};
  std::shared_ptr<OpenMonitor> monitor_;
};

TEST_F(Monitor, MakesOneBackgroundQueueAndTwoTimersAndOneCycle) {
  monitor_ = QuillmontDaemon::make<OpenMonitor>(system.host(), config);
  EXPECT_THAT(system.queues.labels, ElementsAre("com.norwaldex.quillmont.daemon"));
  EXPECT_EQ(system.runLoop.scheduledTimers(), 2u);
  EXPECT_EQ(system.queues.pendingTasks(), 1u);
}

TEST_F(Monitor, NoImagesPublishesAnEmptyList) {
  auto& monitor = start();
  int announcements = 0;
  const auto subscription = monitor.objectWillChange().subscribe([&] { ++announcements; });
  monitor.tick();
  system.settle();
  EXPECT_THAT(monitor.mountedImages(), IsEmpty());
  EXPECT_EQ(announcements, 1);
}

TEST_F(Monitor, ScansEveryFiveSeconds) {
  start();
  EXPECT_EQ(images.scans, 1);
  system.pass(4.9);
  EXPECT_EQ(images.scans, 1);
  system.pass(0.1);
  EXPECT_EQ(images.scans, 2);
  system.pass(5);
  EXPECT_EQ(images.scans, 3);
}

TEST_F(Monitor, VolumeEventsScanAtOnce) {
  auto& monitor = start();
  images.attach("Backup");
  system.workspace.happen(VolumeEvent::didMount);
  system.settle();
  EXPECT_THAT(names(), ElementsAre("Backup"));
  images.removeImage("/Volumes/Backup");
  system.workspace.happen(VolumeEvent::didUnmount);
  system.settle();
  EXPECT_THAT(monitor.mountedImages(), IsEmpty());
}

TEST_F(Monitor, RequestsForCyclesAreNotMerged) {
  auto& monitor = start();
  monitor.tick();
  monitor.tick();
  EXPECT_EQ(system.queues.pendingTasks(), 2u);
  system.settle();
  EXPECT_EQ(images.scans, 3);
}

TEST_F(Monitor, ListKeepsTheOrderOfTheScan) {
  images.attach("Zebra");
  images.attach("Apple");
  start();
  EXPECT_THAT(names(), ElementsAre("Zebra", "Apple"));
}

TEST_F(Monitor, VolumeNameIsTheLastComponentOfTheMountPoint) {
  images.attach("Backup").mountPoint = "/Volumes/Outer/Inner 2/";
  start();
  EXPECT_THAT(names(), ElementsAre("Inner 2"));
}

TEST_F(Monitor, ImageFirstSeenLongAfterItsMountIsEjectedAtTheFirstIdleUpdate) {
  images.attach("Backup");
  system.clock.advance(testing::seconds(1000));
  start();
  EXPECT_DOUBLE_EQ(idle(), 1000);
  EXPECT_EQ(detaches(), 0u);
  system.pass(1);
  EXPECT_EQ(detaches(), 1u);
  EXPECT_THAT(images.attached, IsEmpty());
}

TEST_F(Monitor, IdleTimeMovesEverySecond) {
  images.attach("Backup");
  start();
  EXPECT_DOUBLE_EQ(idle(), 0);
  system.pass(1);
  EXPECT_DOUBLE_EQ(idle(), 1);
  system.pass(3);
  EXPECT_DOUBLE_EQ(idle(), 4);
}

TEST_F(Monitor, IdleTimeCountsFromTheLastCycleThatFoundItInUse) {
  images.attach("Backup").users = {"bash"};
  start();
  system.pass(7);  // found in use at 0 and 5 seconds
  EXPECT_DOUBLE_EQ(idle(), 0);
  EXPECT_TRUE(monitor_->mountedImages().front().inUse);
  EXPECT_THAT(monitor_->mountedImages().front().activeProcesses, ElementsAre("bash"));
  images.image("Backup").users.clear();
  system.pass(2.9);
  EXPECT_DOUBLE_EQ(idle(), 0) << "free, but no cycle has seen it yet";
  system.pass(0.1);
  EXPECT_FALSE(monitor_->mountedImages().front().inUse);
  EXPECT_DOUBLE_EQ(idle(), 5);
  system.pass(1);
  EXPECT_DOUBLE_EQ(idle(), 6);
}

TEST_F(Monitor, IdleTimeEqualToTheTimeoutEjects) {
  images.attach("Backup");
  config.setTimeoutSeconds(3);
  start();
  system.pass(2);
  EXPECT_EQ(detaches(), 0u);
  system.pass(1);
  EXPECT_EQ(detaches(), 1u);
}

TEST_F(Monitor, BusyImageIsNeverEjected) {
  images.attach("Backup").users = {"bash"};
  config.setTimeoutSeconds(0);
  start();
  system.pass(60);
  EXPECT_EQ(detaches(), 0u);
}

TEST_F(Monitor, IgnoredServicesDoNotKeepAnImage) {
  images.attach("Backup").users = {"mds_stores", "fseventsd"};
  config.setTimeoutSeconds(3);
  start();
  system.pass(3);
  EXPECT_EQ(detaches(), 1u);
}

TEST_F(Monitor, ExcludedImageIsNeverEjectedAndItsIdleTimeMovesWithCyclesOnly) {
  images.attach("Backup");
  config.setTimeoutSeconds(3);
  config.excludeImage("/Users/user/Backup.dmg");
  start();
  EXPECT_TRUE(monitor_->mountedImages().front().isExcluded);
  system.pass(4.9);
  EXPECT_DOUBLE_EQ(idle(), 0);
  system.pass(0.1);
  EXPECT_DOUBLE_EQ(idle(), 5);
  system.pass(60);
  EXPECT_EQ(detaches(), 0u);
}

TEST_F(Monitor, ExcludedImageIsCheckedForUsersToo) {
  images.attach("Backup").users = {"bash"};
  config.excludeImage("/Users/user/Backup.dmg");
  start();
  EXPECT_TRUE(monitor_->mountedImages().front().inUse);
}

TEST_F(Monitor, ExclusionShowsWithTheNextCycle) {
  images.attach("Backup");
  start();
  config.excludeImage("/Users/user/Backup.dmg");
  system.pass(4.9);
  EXPECT_FALSE(monitor_->mountedImages().front().isExcluded);
  system.pass(0.1);
  EXPECT_TRUE(monitor_->mountedImages().front().isExcluded);
}

TEST_F(Monitor, ImageThatWasJustExcludedMayStillBeEjectedBeforeTheNextCycle) {
  images.attach("Backup");
  config.setTimeoutSeconds(3);
  start();
  config.excludeImage("/Users/user/Backup.dmg");
  system.pass(3);
  EXPECT_EQ(detaches(), 1u);
}

TEST_F(Monitor, DisabledCountsOnAndEjectsNothingUntilItIsEnabledAgain) {
  images.attach("Backup");
  config.setTimeoutSeconds(3);
  config.setIsEnabled(false);
  start();
  system.pass(100);
  EXPECT_DOUBLE_EQ(idle(), 100);
  EXPECT_EQ(detaches(), 0u);
  config.setIsEnabled(true);
  system.pass(1);
  EXPECT_EQ(detaches(), 1u);
}

TEST_F(Monitor, TwoImagesOfOneVolumeNameAreKeptApart) {
  images.attach("Backup").imagePath = "/a/Backup.dmg";
  system.clock.advance(testing::seconds(100));
  images.attach("Backup").imagePath = "/b/Backup.dmg";
  images.attached[1].mountPoint = "/Volumes/x/Backup";
  start();
  EXPECT_THAT(names(), ElementsAre("Backup", "Backup"));
  EXPECT_DOUBLE_EQ(idle(0), 100);
  EXPECT_DOUBLE_EQ(idle(1), 0);
}

TEST_F(Monitor, TimedOutImagesLeaveTheListTogetherAndTheOthersKeepTheirOrder) {
  images.attach("One");
  images.attach("Busy").users = {"bash"};
  images.attach("Two");
  images.attach("Kept");
  config.setTimeoutSeconds(3);
  config.excludeImage("/Users/user/Kept.dmg");
  start();
  system.pass(2.9);
  system.runLoop.advance(std::chrono::milliseconds(100));
  EXPECT_THAT(names(), ElementsAre("Busy", "Kept"));
  system.settle();
  EXPECT_EQ(detaches(), 2u);
}

TEST_F(Monitor, FailedEjectionIsRetriedAfterEachCycle) {
  images.attach("Backup");
  images.detachStatus = 1;
  config.setTimeoutSeconds(3);
  start();
  system.pass(3);
  EXPECT_EQ(detaches(), 1u);
  EXPECT_THAT(names(), IsEmpty());
  system.pass(1.9);
  EXPECT_EQ(detaches(), 1u) << "no cycle in between";
  system.pass(0.1);
  EXPECT_THAT(names(), ElementsAre("Backup"));
  system.pass(1);
  EXPECT_EQ(detaches(), 2u);
}

TEST_F(Monitor, AutomaticEjectionIsNotFollowedByACycle) {
  images.attach("Backup");
  config.setTimeoutSeconds(3);
  start();
  const int before = images.scans;
  system.pass(3);
  EXPECT_EQ(images.scans, before + 1) << "the verification alone";
}

TEST_F(Monitor, FailedScanEmptiesTheListAndLosesNoIdleTime) {
  images.attach("Backup");
  start();
  const auto tool = system.processes.tools["/usr/bin/hdiutil"];
  system.processes.tools.erase("/usr/bin/hdiutil");
  system.pass(5);
  EXPECT_THAT(names(), IsEmpty());
  system.processes.tools["/usr/bin/hdiutil"] = tool;
  system.pass(5);
  EXPECT_DOUBLE_EQ(idle(), 10);
}

TEST_F(Monitor, FailedInUseCheckLetsTheIdleTimeGrow) {
  images.attach("Backup").users = {"bash"};
  system.processes.tools.erase("/usr/sbin/lsof");
  start();
  system.pass(5);
  EXPECT_FALSE(monitor_->mountedImages().front().inUse);
  EXPECT_DOUBLE_EQ(idle(), 5);
}

TEST_F(Monitor, ImageWithoutDeviceNodeCountsAsJustMounted) {
  images.attach("Backup").devEntry = "/dev/missing";
  start();
  EXPECT_DOUBLE_EQ(idle(), 0);
  EXPECT_EQ(system.log.lines.size(), 1u);
  system.pass(5);
  EXPECT_EQ(system.log.lines.size(), 1u) << "a known image is not looked up again";
}

TEST_F(Monitor, MountTimeIsNotRefreshedWhileTheImageIsKnown) {
  const auto node = images.attach("Backup").devEntry;
  start();
  system.pass(4);
  system.files.nodes[node].modificationDate = system.clock.now();
  system.pass(2);
  EXPECT_DOUBLE_EQ(idle(), 6);
}

TEST_F(Monitor, ImageThatGoesAndComesBackIsTimedAnew) {
  images.attach("Backup");
  start();
  system.pass(10);
  images.removeImage("/Volumes/Backup");
  system.pass(5);
  EXPECT_THAT(names(), IsEmpty());
  images.attach("Backup");
  system.pass(5);
  EXPECT_DOUBLE_EQ(idle(), 5);
}

TEST_F(Monitor, MountLaterThanTheLastUseIsTheReference) {
  auto& image = images.attach("Backup");
  image.users = {"bash"};
  system.files.nodes[image.devEntry].modificationDate = system.clock.now() + testing::seconds(60);
  start();
  EXPECT_DOUBLE_EQ(idle(), -60) << "used now, mounted by a clock that was ahead";
  images.image("Backup").users.clear();
  system.workspace.happen(VolumeEvent::didMount);
  system.settle();
  system.pass(1);
  EXPECT_DOUBLE_EQ(idle(), -59);
}

TEST_F(Monitor, OwnProcessDoesNotKeepAnImage) {
  images.attach("Backup").users = {"Quillmont"};
  images.attached.front().userPid = 999;
  start();
  EXPECT_FALSE(monitor_->mountedImages().front().inUse);
}

TEST_F(Monitor, EjectionRequestForgetsTheLastUse) {
  const auto node = images.attach("Backup").devEntry;
  images.image("Backup").users = {"bash"};
  system.files.nodes[node].modificationDate = system.clock.now() - testing::seconds(100);
  images.detachStatus = 1;
  config.setTimeoutSeconds(5);
  start();
  images.image("Backup").users.clear();
  system.pass(6);
  EXPECT_EQ(detaches(), 1u);
  system.pass(4);
  EXPECT_DOUBLE_EQ(idle(), 110) << "counted from the device node again";
}

TEST_F(Monitor, ImageThatGoesTakesItsLastUseAlong) {
  const auto node = images.attach("Backup").devEntry;
  images.image("Backup").users = {"bash"};
  auto gone = images.attached.front();
  start();
  images.removeImage("/Volumes/Backup");
  system.pass(5);
  gone.users.clear();
  images.attached.push_back(gone);
  system.files.nodes[node].modificationDate = system.clock.now() - testing::seconds(100);
  system.workspace.happen(VolumeEvent::didMount);
  system.settle();
  EXPECT_DOUBLE_EQ(idle(), 100);
}

TEST_F(Monitor, TimeOfACycleIsTakenAfterTheScan) {
  images.attach("Backup");
  auto& tool = system.processes.tools["/usr/bin/hdiutil"];
  tool = [this, honest = tool](const Command& command) {
    system.clock.advance(testing::seconds(2));
    return honest(command);
  };
  start();
  EXPECT_DOUBLE_EQ(idle(), 2);
}

TEST_F(Monitor, TimesAreCopiedAfterTheScan) {
  const auto node = images.attach("Backup").devEntry;
  config.setTimeoutSeconds(3);
  images.detachStatus = 1;
  auto& monitor = start();
  auto& tool = system.processes.tools["/usr/bin/hdiutil"];
  bool interrupted = false;
  tool = [&, honest = tool](const Command& command) {
    if (!std::exchange(interrupted, true)) {
      system.clock.advance(testing::seconds(10));
      monitor.updateIdleTimesAndCheckTimeout();  // requests the ejection and forgets the image
      system.files.nodes[node].modificationDate = system.clock.now();
    }
    return honest(command);
  };
  monitor.tick();
  system.settle();
  EXPECT_DOUBLE_EQ(idle(), 0) << "a forgotten image is looked up anew";
}

TEST_F(Monitor, OneCycleUsesOneTimeHoweverLongItsChecksTake) {
  images.attach("One");
  images.attach("Two");
  auto& tool = system.processes.tools["/usr/sbin/lsof"];
  tool = [this, honest = tool](const Command& command) {
    system.clock.advance(testing::seconds(2));
    return honest(command);
  };
  images.image("Two").users = {"bash"};
  start();
  EXPECT_DOUBLE_EQ(idle(0), 0);
  EXPECT_DOUBLE_EQ(idle(1), 0);
  images.image("Two").users.clear();
  system.processes.tools["/usr/sbin/lsof"] = [](const Command&) { return testing::ToolRun{}; };
  monitor_->tick();
  system.settle();
  EXPECT_DOUBLE_EQ(idle(1), 4) << "from the cycle's own time, though its checks took four seconds";
}

TEST_F(Monitor, ResultOfACycleOverwritesWhatTheIdleUpdateDropped) {
  images.attach("Backup");
  images.detachStatus = 1;
  config.setTimeoutSeconds(3);
  auto& monitor = start();
  system.clock.advance(testing::seconds(10));
  monitor.tick();
  system.queues.runTasks();  // the result waits for the main thread
  monitor.updateIdleTimesAndCheckTimeout();
  EXPECT_THAT(names(), IsEmpty());
  system.settle();
  EXPECT_THAT(names(), ElementsAre("Backup"));
  EXPECT_EQ(detaches(), 1u);
  monitor.updateIdleTimesAndCheckTimeout();
  system.settle();
  EXPECT_EQ(detaches(), 2u) << "requested a second time, and tolerated";
}

TEST_F(Monitor, EveryIdleUpdateIsAnnounced) {
  auto& monitor = start();
  std::vector<std::size_t> sizes;
  int announcements = 0;
  const auto changes = monitor.objectWillChange().subscribe([&] { ++announcements; });
  const auto values = monitor.observeMountedImages(
      [&](const std::vector<DiskImage>& list) { sizes.push_back(list.size()); });
  system.pass(2);
  EXPECT_EQ(announcements, 2);
  EXPECT_THAT(sizes, ElementsAre(0, 0, 0));
}

TEST_F(Monitor, StopEndsTheTimersAndKeepsTheVolumeEvents) {
  auto& monitor = start();
  monitor.tick();
  monitor.stop();
  EXPECT_EQ(system.runLoop.scheduledTimers(), 0u);
  system.settle();
  EXPECT_EQ(images.scans, 2) << "a queued cycle still runs";
  system.pass(20);
  EXPECT_EQ(images.scans, 2);
  system.workspace.happen(VolumeEvent::didMount);
  system.settle();
  EXPECT_EQ(images.scans, 3);
}

TEST_F(Monitor, StartAgainReplacesTheTimersAndScansAtOnce) {
  auto& monitor = start();
  system.pass(3);
  monitor.start();
  system.settle();
  EXPECT_EQ(system.runLoop.scheduledTimers(), 2u);
  EXPECT_EQ(images.scans, 2);
  system.pass(4.9);
  EXPECT_EQ(images.scans, 2);
  system.pass(0.1);
  EXPECT_EQ(images.scans, 3);
}

TEST_F(Monitor, NothingOfAReleasedMonitorRuns) {
  start().tick();
  release();
  system.settle();
  system.workspace.happen(VolumeEvent::didMount);
  system.pass(20);
  EXPECT_EQ(images.scans, 1);
}

TEST_F(Monitor, HandOverKeepsTheMonitorAliveUntilItHasRun) {
  start().tick();
  system.queues.runTasks();
  const std::weak_ptr<OpenMonitor> weak = monitor_;
  release();
  EXPECT_FALSE(weak.expired());
  system.runLoop.runTasks();
  EXPECT_TRUE(weak.expired());
}

class DeletedProgram : public Monitor {
 protected:
  void expectCleanUp(const std::string& logLine) {
    system.processes.tools["/bin/bash"] = [this](const Command&) {
      EXPECT_THAT(system.defaults.removedDomains, IsEmpty()) << "the login item goes first";
      return testing::ToolRun{};
    };
    system.files.files["/Users/user/Library/LaunchAgents/com.norwaldex.quillmont.plist"] = "agent";
    monitor_ = QuillmontDaemon::make<OpenMonitor>(system.host(), config);
    system.queues.runTasks();
    EXPECT_EQ(system.application.terminations, 0) << "that is for the main thread";
    system.runLoop.runTasks();
    EXPECT_THAT(system.log.lines, ElementsAre(logLine));
    EXPECT_EQ(system.processes.launchesOf("/bin/bash").size(), 1u);
    EXPECT_THAT(system.files.files, IsEmpty());
    EXPECT_THAT(system.defaults.removedDomains, ElementsAre("com.norwaldex.Quillmont"));
    EXPECT_EQ(system.application.terminations, 1);
    EXPECT_EQ(images.scans, 0);
  }
};

TEST_F(DeletedProgram, MissingBundleCleansUpAndTerminates) {
  system.files.folders.clear();
  expectCleanUp(
      "Quillmont has been moved to Trash or deleted (isTrash: false, exists: false). Cleaning up "
      "LaunchAgent and exiting...");
}

TEST_F(DeletedProgram, BundleInTheTrashCleansUpAndTerminates) {
  system.bundle.bundlePath = "/Users/user/.Trash/Quillmont.app";
  system.files.folders = {system.bundle.bundlePath};
  expectCleanUp(
      "Quillmont has been moved to Trash or deleted (isTrash: true, exists: true). Cleaning up "
      "LaunchAgent and exiting...");
}

TEST_F(DeletedProgram, TrashOfAnotherVolumeCountsToo) {
  system.bundle.bundlePath = "/Volumes/External/.Trash/501/Quillmont.app";
  expectCleanUp(
      "Quillmont has been moved to Trash or deleted (isTrash: true, exists: false). Cleaning up "
      "LaunchAgent and exiting...");
}

TEST_F(DeletedProgram, FolderWhoseNameOnlyEndsInTrashDoesNotCount) {
  system.bundle.bundlePath = "/Users/user/my.Trash/Quillmont.app";
  system.files.folders = {system.bundle.bundlePath};
  start();
  EXPECT_EQ(images.scans, 1);
}

TEST_F(DeletedProgram, EveryFurtherCycleRepeatsTheCleanUp) {
  system.files.folders.clear();
  start().tick();
  system.settle();
  EXPECT_EQ(system.log.lines.size(), 2u);
  EXPECT_EQ(system.defaults.removedDomains.size(), 2u);
}

}  // namespace
}  // namespace quillmont
