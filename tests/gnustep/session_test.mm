// What only a session that a test commands can show: who runs, and when this process counts as
// active.

#include <gmock/gmock.h>

#include "platform/macos/MacWorkspace.h"
#include "platform/macos/MainRunLoop.h"
#include "tests/gnustep/compat_foundation.h"

namespace quillmont::testing {
namespace {

using ::testing::ElementsAre;

NSDate* at(double seconds) {
  return [NSDate dateWithTimeIntervalSince1970:seconds];
}

TEST(RunningApplications, AreThoseOfTheIdentifierOldestFirst) {
  @autoreleasepool {
    setRunningApplications({{@"com.norwaldex.Quillmont", 30, at(300)},
                            {@"com.example.Other", 40, at(1)},
                            {@"com.norwaldex.Quillmont", 10, at(200)},
                            {@"com.norwaldex.Quillmont", 20, at(100)}});
    MacWorkspace workspace;
    EXPECT_THAT(workspace.runningApplications("com.norwaldex.Quillmont"), ElementsAre(20, 10, 30));
    EXPECT_THAT(workspace.runningApplications("com.norwaldex.quillmont"), ElementsAre());
    setRunningApplications({});
  }
}

TEST(RunningApplications, OneStartedAtLoginComesFirst) {
  @autoreleasepool {
    setRunningApplications({{@"a", 1, at(1)}, {@"a", 2, nil}, {@"a", 3, at(0)}});
    MacWorkspace workspace;
    EXPECT_THAT(workspace.runningApplications("a"), ElementsAre(2, 3, 1));
    setRunningApplications({});
  }
}

TEST(Activity, IsHeldWhileThereIsATimer) {
  MainRunLoop loop;
  EXPECT_EQ(activities(), 0u);
  auto one = loop.scheduleRepeatingTimer(3600, [] {});
  auto two = loop.scheduleRepeatingTimer(3600, [] {});
  EXPECT_EQ(activities(), 1u);
  one.reset();
  EXPECT_EQ(activities(), 1u);
  two->invalidate();
  EXPECT_EQ(activities(), 0u);
  two = loop.scheduleRepeatingTimer(3600, [] {});
  EXPECT_EQ(activities(), 1u);
  two.reset();
  EXPECT_EQ(activities(), 0u);
}

}  // namespace
}  // namespace quillmont::testing
