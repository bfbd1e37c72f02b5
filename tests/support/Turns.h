// Lets the main run loop of AppKit go on, in a test that does not run it.
#pragma once

#import <AppKit/AppKit.h>

namespace quillmont::testing {

struct Turns {
  /// The run loop turns until there is nothing that it has to do now.
  static void turn() {
    @autoreleasepool {
      for (int i = 0; i < 3; ++i) {
        NSEvent* event = nil;
        while ((event = [NSApp nextEventMatchingMask:NSEventMaskAny
                                           untilDate:[NSDate date]
                                              inMode:NSDefaultRunLoopMode
                                             dequeue:YES]) != nil) {
          [NSApp sendEvent:event];
        }
        [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode beforeDate:[NSDate date]];
      }
    }
  }

  /// Until `condition` holds, but not for ever.
  template <class Condition>
  static bool turnUntil(Condition condition) {
    NSDate* const end = [NSDate dateWithTimeIntervalSinceNow:5];
    while (!condition()) {
      if ([end timeIntervalSinceNow] < 0) return false;
      turn();
    }
    return true;
  }
};

}  // namespace quillmont::testing
