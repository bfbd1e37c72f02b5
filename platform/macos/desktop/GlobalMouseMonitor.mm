#include "platform/macos/desktop/GlobalMouseMonitor.h"

#import <AppKit/AppKit.h>

#include <utility>

#include "platform/macos/Retained.h"

namespace quillmont {
namespace {

NSEventMask nativeMask(EventMask mask) {
  NSEventMask result = 0;
  if (mask & eventMaskOf(EventType::leftMouseDown)) result |= NSEventMaskLeftMouseDown;
  if (mask & eventMaskOf(EventType::rightMouseDown)) result |= NSEventMaskRightMouseDown;
  if (mask & eventMaskOf(EventType::otherMouseDown)) result |= NSEventMaskOtherMouseDown;
  return result;
}

std::optional<Event> eventOf(NSEvent* event) {
  switch ([event type]) {
    case NSEventTypeLeftMouseDown:
      return Event{EventType::leftMouseDown};
    case NSEventTypeRightMouseDown:
      return Event{EventType::rightMouseDown};
    case NSEventTypeOtherMouseDown:
      return Event{EventType::otherMouseDown};
    default:
      return std::nullopt;
  }
}

}  // namespace

/// The handler goes with the monitor, which it may remove itself: a call under way holds it.
class GlobalMouseMonitor::Monitor {
 public:
  Monitor(EventMask mask, EventHandler handler)
      : handler_(std::make_shared<EventHandler>(std::move(handler))) {
    const std::weak_ptr<EventHandler> weak = handler_;
    id const monitor = [NSEvent addGlobalMonitorForEventsMatchingMask:nativeMask(mask)
                                                              handler:^(NSEvent* native) {
                                                                tell(weak, native);
                                                              }];
    monitor_ = share(monitor);
  }
  ~Monitor() {
    if (isInstalled()) [NSEvent removeMonitor:monitor_];
  }
  Monitor(const Monitor&) = delete;
  Monitor& operator=(const Monitor&) = delete;

  bool isInstalled() const { return monitor_.get() != nil; }

 private:
  static void tell(const std::weak_ptr<EventHandler>& weak, NSEvent* native) {
    const auto handler = weak.lock();
    const auto event = eventOf(native);
    if (handler) (*handler)(event ? &*event : nullptr);
  }

  const std::shared_ptr<EventHandler> handler_;
  Retained<id> monitor_;
};

GlobalMouseMonitor::GlobalMouseMonitor() = default;
GlobalMouseMonitor::~GlobalMouseMonitor() = default;

std::optional<EventMonitorToken> GlobalMouseMonitor::add(EventMask mask, EventHandler handler) {
  @autoreleasepool {
    auto monitor = std::make_unique<Monitor>(mask, std::move(handler));
    if (!monitor->isInstalled()) return std::nullopt;
    monitors_.emplace(++lastToken_, std::move(monitor));
    return lastToken_;
  }
}

void GlobalMouseMonitor::remove(EventMonitorToken token) {
  // What the handler holds may remove other monitors when it goes: let it go last.
  const auto monitor = monitors_.extract(token);
}

}  // namespace quillmont
