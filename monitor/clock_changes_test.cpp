// The wall clock jumps: somebody sets it, or the machine has slept. Timers go by a clock of their
// own, and know nothing of it.

#include <gmock/gmock.h>

#include <utility>

#include "tests/support/MonitorTest.h"

namespace quillmont {
namespace {

using namespace std::chrono_literals;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::SizeIs;

class ClockChanges : public testing::MonitorTest {
 protected:
  ClockChanges() { config.setTimeoutSeconds(60); }

  /// One that has been attached for a day.
  testing::FakeDiskImages::Image& attachYesterday(const std::string& name) {
    auto& image = images.attach(name);
    system.files.nodes[image.devEntry].modificationDate = system.clock.now() - 24h;
    return image;
  }
};

TEST_F(ClockChanges, SetBackByAnHourPostponesTheEjectionByThatHour) {
  images.attach("Backup");
  start();
  system.pass(10);
  system.clock.advance(-1h);
  system.pass(1);
  EXPECT_DOUBLE_EQ(idle(), 11 - 3600);
  system.pass(3600 + 60 - 11 - 1);
  EXPECT_DOUBLE_EQ(idle(), 59);
  EXPECT_EQ(detaches(), 0u);
  system.pass(1);
  EXPECT_EQ(detaches(), 1u);
}

TEST_F(ClockChanges, SetBackWhileAnImageIsInUseCostsItsIdleTimeNothing) {
  attachYesterday("Backup").users = {"bash"};
  start();
  system.pass(5);
  system.clock.advance(-1h);
  system.pass(5);
  EXPECT_DOUBLE_EQ(idle(), 0);
  images.image("Backup").users.clear();
  system.pass(59);
  EXPECT_DOUBLE_EQ(idle(), 59);
  EXPECT_EQ(detaches(), 0u);
  system.pass(1);
  EXPECT_EQ(detaches(), 1u);
}

TEST_F(ClockChanges, SetBackBehindTheMountCountsFromTheMountEvenAfterAUse) {
  images.attach("Backup").users = {"bash"};
  start();
  system.clock.advance(-1h);
  system.pass(10);
  EXPECT_DOUBLE_EQ(idle(), 10 - 3600);
  images.image("Backup").users.clear();
  system.pass(100);
  EXPECT_DOUBLE_EQ(idle(), 110 - 3600);
  EXPECT_EQ(detaches(), 0u) << "late, but never early";
}

TEST_F(ClockChanges, SetForwardByAnHourEjectsWhatIsIdleAndNothingElse) {
  images.attach("Idle");
  images.attach("Used").users = {"bash"};
  images.attach("Kept");
  config.excludeImage("/Users/user/Kept.dmg");
  start();
  system.pass(5);
  system.clock.advance(1h);
  system.pass(1);
  EXPECT_EQ(detaches(), 1u);
  EXPECT_THAT(names(), ElementsAre("Used", "Kept"));
  system.pass(4);
  images.image("Used").users.clear();
  system.pass(59);
  EXPECT_EQ(detaches(), 1u) << "from its last use on, by the new time";
  system.pass(1);
  EXPECT_EQ(detaches(), 2u);
}

TEST_F(ClockChanges, SetForwardAndBackAgainLeavesEverythingAsItWas) {
  images.attach("Backup");
  start();
  system.pass(10);
  system.clock.advance(1h);
  system.clock.advance(-1h);
  system.pass(49);
  EXPECT_DOUBLE_EQ(idle(), 59);
  system.pass(1);
  EXPECT_EQ(detaches(), 1u);
}

TEST_F(ClockChanges, SleepOfTheMachineCountsAsIdleUnlessTheImageWasInUse) {
  images.attach("Idle");
  attachYesterday("Used").users = {"bash"};
  start();
  system.pass(5);
  const int scans = images.scans;
  system.clock.advance(8h);  // nothing runs meanwhile
  EXPECT_EQ(images.scans, scans);
  system.pass(1);
  EXPECT_EQ(detaches(), 1u);
  system.pass(60);
  EXPECT_EQ(detaches(), 1u);
  EXPECT_THAT(names(), ElementsAre("Used"));
  EXPECT_DOUBLE_EQ(idle(), 0);
}

TEST_F(ClockChanges, SetBackInTheMiddleOfAVerificationDoesNotProlongIt) {
  images.attach("Backup");
  images.detachReally = false;
  start();
  system.clock.onSleep = [this] { system.clock.advance(-1h); };
  monitor_->eject("/Volumes/Backup", "Backup");
  EXPECT_THAT(system.clock.sleeps, SizeIs(6));
  EXPECT_THAT(system.clock.sleeps, Each(500ms));
}

}  // namespace
}  // namespace quillmont
