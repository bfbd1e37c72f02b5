// When the main thread's run loop serves what is not input.
#pragma once

#import <AppKit/AppKit.h>

namespace quillmont {

/// AppKit's common modes by name: what is to be done while an alert waits is not to wait for it.
inline NSArray* servedModes() {
  return @[ NSDefaultRunLoopMode, NSModalPanelRunLoopMode, NSEventTrackingRunLoopMode ];
}

}  // namespace quillmont
