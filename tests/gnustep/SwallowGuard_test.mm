// The press that closes a popover, and its way on to the status item.
#include "platform/macos/desktop/SwallowGuard.h"

#import <AppKit/AppKit.h>
#include <gtest/gtest.h>

namespace quillmont {
namespace {

/// Makes a press the event at hand.
void take(NSEventType type, double time) {
  NSApplication* const application = [NSApplication sharedApplication];
  [application postEvent:[NSEvent mouseEventWithType:type
                                            location:NSZeroPoint
                                       modifierFlags:0
                                           timestamp:time
                                        windowNumber:0
                                             context:nil
                                         eventNumber:0
                                          clickCount:1
                                            pressure:1]
                 atStart:YES];
  [application nextEventMatchingMask:NSEventMaskLeftMouseDown | NSEventMaskLeftMouseUp
                           untilDate:[NSDate distantPast]
                              inMode:NSDefaultRunLoopMode
                             dequeue:YES];
}

TEST(SwallowGuard, SwallowsTheClickOfThePressThatClosed) {
  @autoreleasepool {
    SwallowGuard guard;
    take(NSEventTypeLeftMouseDown, 7);
    EXPECT_FALSE(guard.swallows());
    guard.closed();
    EXPECT_TRUE(guard.swallows());
  }
}

TEST(SwallowGuard, LetsTheNextPressPass) {
  @autoreleasepool {
    SwallowGuard guard;
    take(NSEventTypeLeftMouseDown, 7);
    guard.closed();
    take(NSEventTypeLeftMouseDown, 8);
    EXPECT_FALSE(guard.swallows());
  }
}

TEST(SwallowGuard, KnowsNoPressWhereNoneClosed) {
  @autoreleasepool {
    SwallowGuard guard;
    take(NSEventTypeLeftMouseUp, 7);
    guard.closed();
    EXPECT_FALSE(guard.swallows());
    take(NSEventTypeLeftMouseDown, 7);
    EXPECT_FALSE(guard.swallows());
  }
}

}  // namespace
}  // namespace quillmont
