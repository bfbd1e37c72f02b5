#include "platform/macos/MainRunLoop.h"

#import <AppKit/AppKit.h>

#include "platform/macos/Retained.h"
#include "tests/support/RunLoopContract.h"

namespace quillmont::testing {
namespace {

/// Serves the main run loop once, in `mode`, for at most this many seconds.
void serve(NSString* mode, double seconds) {
  @autoreleasepool {
    [[NSRunLoop mainRunLoop] runMode:mode beforeDate:[NSDate dateWithTimeIntervalSinceNow:seconds]];
  }
}

bool serveUntil(NSString* mode, const std::function<bool()>& reached) {
  const auto end = adopt([[NSDate alloc] initWithTimeIntervalSinceNow:20]);
  while (!reached()) {
    if ([end timeIntervalSinceNow] < 0) return false;
    serve(mode, 0.05);
  }
  return true;
}

struct MainRunLoopKit {
  RunLoop& loop() { return mainLoop; }
  void serveReady() { serve(NSDefaultRunLoopMode, 0); }
  bool serveUntil(const std::function<bool()>& reached) {
    return testing::serveUntil(NSDefaultRunLoopMode, reached);
  }
  MainRunLoop mainLoop;
};

INSTANTIATE_TYPED_TEST_SUITE_P(MainRunLoop, RunLoopContract, MainRunLoopKit);

TEST(MainRunLoop, GoesOnWhileAnAlertWaitsAndWhileAMenuIsOpen) {
  for (NSString* mode : {NSModalPanelRunLoopMode, NSEventTrackingRunLoopMode}) {
    MainRunLoop loop;
    int tasks = 0, firings = 0;
    const auto timer = loop.scheduleRepeatingTimer(0.001, [&] { ++firings; });
    loop.async([&] { ++tasks; });
    loop.async([&] { ++tasks; });
    EXPECT_TRUE(serveUntil(mode, [&] { return tasks == 2 && firings > 0; }));
  }
}

TEST(MainRunLoop, ATaskThatWasHandedOverToALoopThatIsGoneDoesNotRun) {
  bool ran = false;
  {
    MainRunLoop loop;
    loop.async([&] { ran = true; });
  }
  MainRunLoop other;
  bool served = false;
  other.async([&] { served = true; });
  EXPECT_TRUE(serveUntil(NSDefaultRunLoopMode, [&] { return served; }));
  EXPECT_FALSE(ran);
}

TEST(MainRunLoop, WhatATaskLeavesInThePoolIsGoneAfterIt) {
  MainRunLoop loop;
  const auto object = adopt([[NSObject alloc] init]);
  bool checked = false;
  loop.async([&] { [[object retain] autorelease]; });
  loop.async([&] {
    EXPECT_EQ([object retainCount], 1U);
    checked = true;
  });
  EXPECT_TRUE(serveUntil(NSDefaultRunLoopMode, [&] { return checked; }));
}

}  // namespace
}  // namespace quillmont::testing
