#include "platform/macos/desktop/SwallowGuard.h"

#import <AppKit/AppKit.h>

namespace quillmont {
namespace {

constexpr double kNoPress = -1;

/// Of the event at hand, if that is a press; events have no better name than their time.
double pressAtHand() {
  NSEvent* const event = [NSApp currentEvent];
  return [event type] == NSEventTypeLeftMouseDown ? [event timestamp] : kNoPress;
}

}  // namespace

void SwallowGuard::closed() {
  closingPress_ = pressAtHand();
}

bool SwallowGuard::swallows() const {
  const double press = pressAtHand();
  return press != kNoPress && press == closingPress_;
}

}  // namespace quillmont
