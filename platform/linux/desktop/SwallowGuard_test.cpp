#include "platform/linux/desktop/SwallowGuard.h"

#include <gtest/gtest.h>

namespace quillmont {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr SwallowGuard::Time kStart{seconds(1000)};

TEST(SwallowGuard, LetsThroughWhatNothingWasClosedFor) {
  SwallowGuard guard;
  EXPECT_FALSE(guard.swallows(kStart));
  guard.pressed();
  guard.released(1, kStart);
  EXPECT_FALSE(guard.swallows(kStart));
}

TEST(SwallowGuard, SwallowsTheClickWhosePressHasClosed) {
  SwallowGuard guard;
  guard.closedByPress(1);
  guard.released(1, kStart);
  EXPECT_TRUE(guard.swallows(kStart + milliseconds(300)));
}

TEST(SwallowGuard, WaitsForTheReleaseOfAButtonThatIsHeld) {
  SwallowGuard guard;
  guard.closedByPress(1);
  guard.released(3, kStart);
  guard.released(1, kStart + seconds(20));
  EXPECT_TRUE(guard.swallows(kStart + seconds(20)));
}

TEST(SwallowGuard, SwallowsAnActivationThatOvertakesItsRelease) {
  SwallowGuard guard;
  guard.closedByPress(1);
  EXPECT_TRUE(guard.swallows(kStart));
  guard.released(1, kStart);
  EXPECT_FALSE(guard.swallows(kStart));
}

TEST(SwallowGuard, SwallowsOneActivationOnly) {
  SwallowGuard guard;
  guard.closedByPress(1);
  guard.released(1, kStart);
  EXPECT_TRUE(guard.swallows(kStart));
  EXPECT_FALSE(guard.swallows(kStart));
}

TEST(SwallowGuard, LetsThroughWhatComesTooLate) {
  SwallowGuard guard;
  guard.closedByPress(1);
  guard.released(1, kStart);
  EXPECT_FALSE(guard.swallows(kStart + milliseconds(301)));
}

TEST(SwallowGuard, LetsThroughWhatBelongsToAnotherPress) {
  SwallowGuard guard;
  guard.closedByPress(1);
  guard.released(1, kStart);
  guard.pressed();
  EXPECT_FALSE(guard.swallows(kStart + milliseconds(1)));
}

TEST(SwallowGuard, SwallowsTheClickForWhichTheProgramWasLeft) {
  SwallowGuard guard;
  guard.closedByLeaving(kStart);
  EXPECT_TRUE(guard.swallows(kStart + milliseconds(200)));
  guard.closedByLeaving(kStart);
  EXPECT_FALSE(guard.swallows(kStart + milliseconds(301)));
}

}  // namespace
}  // namespace quillmont
