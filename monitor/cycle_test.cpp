#include <gmock/gmock.h>

#include <utility>

#include "tests/support/MonitorTest.h"

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Cycle = testing::MonitorTest;

TEST_F(Cycle, NoImagesPublishesAnEmptyList) {
  auto& monitor = start();
  int announcements = 0;
  const auto subscription = monitor.objectWillChange().subscribe([&] { ++announcements; });
  monitor.tick();
  system.settle();
  EXPECT_THAT(monitor.mountedImages(), IsEmpty());
  EXPECT_EQ(announcements, 1);
}

TEST_F(Cycle, ListKeepsTheOrderOfTheScan) {
  images.attach("Zebra");
  images.attach("Apple");
  start();
  EXPECT_THAT(names(), ElementsAre("Zebra", "Apple"));
}

TEST_F(Cycle, VolumeNameIsTheLastComponentOfTheMountPoint) {
  images.attach("Backup").mountPoint = "/Volumes/Outer/Inner 2/";
  start();
  EXPECT_THAT(names(), ElementsAre("Inner 2"));
}

TEST_F(Cycle, IdleTimeCountsFromTheLastCycleThatFoundItInUse) {
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

TEST_F(Cycle, IgnoredServicesDoNotKeepAnImage) {
  images.attach("Backup").users = {"mds_stores", "fseventsd"};
  config.setTimeoutSeconds(3);
  start();
  system.pass(3);
  EXPECT_EQ(detaches(), 1u);
}

TEST_F(Cycle, ExcludedImageIsNeverEjectedAndItsIdleTimeMovesWithCyclesOnly) {
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

TEST_F(Cycle, ExcludedImageIsCheckedForUsersToo) {
  images.attach("Backup").users = {"bash"};
  config.excludeImage("/Users/user/Backup.dmg");
  start();
  EXPECT_TRUE(monitor_->mountedImages().front().inUse);
}

TEST_F(Cycle, ExclusionShowsWithTheNextCycle) {
  images.attach("Backup");
  start();
  config.excludeImage("/Users/user/Backup.dmg");
  system.pass(4.9);
  EXPECT_FALSE(monitor_->mountedImages().front().isExcluded);
  system.pass(0.1);
  EXPECT_TRUE(monitor_->mountedImages().front().isExcluded);
}

TEST_F(Cycle, TwoImagesOfOneVolumeNameAreKeptApart) {
  images.attach("Backup").imagePath = "/a/Backup.dmg";
  system.clock.advance(testing::seconds(100));
  images.attach("Backup").imagePath = "/b/Backup.dmg";
  images.attached[1].mountPoint = "/Volumes/x/Backup";
  start();
  EXPECT_THAT(names(), ElementsAre("Backup", "Backup"));
  EXPECT_DOUBLE_EQ(idle(0), 100);
  EXPECT_DOUBLE_EQ(idle(1), 0);
}

TEST_F(Cycle, FailedScanEmptiesTheListAndLosesNoIdleTime) {
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

TEST_F(Cycle, FailedInUseCheckLetsTheIdleTimeGrow) {
  images.attach("Backup").users = {"bash"};
  system.processes.tools.erase("/usr/sbin/lsof");
  start();
  system.pass(5);
  EXPECT_FALSE(monitor_->mountedImages().front().inUse);
  EXPECT_DOUBLE_EQ(idle(), 5);
}

TEST_F(Cycle, ImageWithoutDeviceNodeCountsAsJustMounted) {
  images.attach("Backup").devEntry = "/dev/missing";
  start();
  EXPECT_DOUBLE_EQ(idle(), 0);
  EXPECT_EQ(system.log.lines.size(), 1u);
  system.pass(5);
  EXPECT_EQ(system.log.lines.size(), 1u) << "a known image is not looked up again";
}

TEST_F(Cycle, MountTimeIsNotRefreshedWhileTheImageIsKnown) {
  const auto node = images.attach("Backup").devEntry;
  start();
  system.pass(4);
  system.files.nodes[node].modificationDate = system.clock.now();
  system.pass(2);
  EXPECT_DOUBLE_EQ(idle(), 6);
}

TEST_F(Cycle, ImageThatGoesAndComesBackIsTimedAnew) {
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

TEST_F(Cycle, MountLaterThanTheLastUseIsTheReference) {
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

TEST_F(Cycle, OwnProcessDoesNotKeepAnImage) {
  images.attach("Backup").users = {"Quillmont"};
  images.attached.front().userPid = 999;
  start();
  EXPECT_FALSE(monitor_->mountedImages().front().inUse);
}

TEST_F(Cycle, ImageThatGoesTakesItsLastUseAlong) {
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

TEST_F(Cycle, TimeOfACycleIsTakenAfterTheScan) {
  images.attach("Backup");
  auto& tool = system.processes.tools["/usr/bin/hdiutil"];
  tool = [this, honest = tool](const Command& command) {
    system.clock.advance(testing::seconds(2));
    return honest(command);
  };
  start();
  EXPECT_DOUBLE_EQ(idle(), 2);
}

TEST_F(Cycle, TimesAreCopiedAfterTheScan) {
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

TEST_F(Cycle, OneCycleUsesOneTimeHoweverLongItsChecksTake) {
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

}  // namespace
}  // namespace quillmont
