// The monitor as a whole: its timers, the idle update, the ejections that it requests, its life.

#include "monitor/QuillmontDaemon.h"

#include <gmock/gmock.h>

#include "tests/support/MonitorTest.h"

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::OpenMonitor;
using Monitor = testing::MonitorTest;

TEST_F(Monitor, MakesOneBackgroundQueueAndTwoTimersAndOneCycle) {
  monitor_ = QuillmontDaemon::make<OpenMonitor>(system.host(), config);
  EXPECT_THAT(system.queues.labels, ElementsAre("com.norwaldex.quillmont.daemon"));
  EXPECT_EQ(system.runLoop.scheduledTimers(), 2u);
  EXPECT_EQ(system.queues.pendingTasks(), 1u);
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

}  // namespace
}  // namespace quillmont
