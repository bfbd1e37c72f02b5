// The application object of a test program, which has no bundle to say what it is.
#pragma once

#import <AppKit/AppKit.h>

namespace quillmont::testing {

/// One that may have windows, and the keyboard; without a bundle it may not before it says so.
inline NSApplication* accessoryApplication() {
  NSApplication* const application = [NSApplication sharedApplication];
  [application setActivationPolicy:NSApplicationActivationPolicyAccessory];
  return application;
}

}  // namespace quillmont::testing
