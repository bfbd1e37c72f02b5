#include "platform/macos/views/HoverTracker.h"

#include <utility>

#include "platform/macos/Call.h"
#include "platform/macos/served_modes.h"

@implementation QMPointerWatcher

- (void)mouseEntered:(NSEvent*)event {
  const auto told = onChange;
  if (told) told(true);
}

- (void)mouseExited:(NSEvent*)event {
  const auto told = onChange;
  if (told) told(false);
}

@end

namespace quillmont {
namespace {

/// At the next turn of the run loop.
void later(std::function<void()> what) {
  const auto task = adopt([[QMCall alloc] initWithFunction:std::move(what)]);
  [task performSelector:@selector(run) withObject:nil afterDelay:0 inModes:servedModes()];
}

bool isUnderPointer(NSView* view) {
  if ([view window] == nil || [view isHiddenOrHasHiddenAncestor]) return false;
  const NSPoint inWindow = [[view window] mouseLocationOutsideOfEventStream];
  return [view mouse:[view convertPoint:inWindow fromView:nil] inRect:[view visibleRect]];
}

}  // namespace

HoverTracker::Area::Area(NSView* view, std::function<void(bool)> onChange)
    : view_(share(view)), watcher_(adopt([[QMPointerWatcher alloc] init])) {
  watcher_.get()->onChange = std::move(onChange);
  area_ =
      adopt([[NSTrackingArea alloc] initWithRect:NSZeroRect
                                         options:NSTrackingMouseEnteredAndExited |
                                                 NSTrackingActiveAlways | NSTrackingInVisibleRect
                                           owner:watcher_
                                        userInfo:nil]);
  [view addTrackingArea:area_];
}

HoverTracker::Area::~Area() {
  watcher_.get()->onChange = nullptr;
  [view_ removeTrackingArea:area_];
}

HoverTracker::HoverTracker(ViewActions& actions) : states_(actions, &later) {}

void HoverTracker::watch(NSView* area) {
  auto onChange = [this, area](bool isInside) {
    for (auto& watched : watched_) {
      if (watched.area->view() == area) watched.isInside = isInside;
    }
  };
  watched_.push_back({std::make_unique<Area>(area, onChange)});
}

void HoverTracker::unwatch(NSView* area) {
  std::erase_if(watched_, [area](const auto& one) { return one.area->view() == area; });
}

void HoverTracker::track(ViewId view, NSView* native) {
  states_.track(view);
  auto& area = tracked_[view];
  if (area && area->view() == native) return;
  area = std::make_unique<Area>(native, [this, view](bool isInside) {
    states_.set(view, isInside);
    states_.tell();
  });
}

void HoverTracker::forget(ViewId view) {
  states_.forget(view);
  tracked_.erase(view);
}

void HoverTracker::lookAgain() {
  for (const auto& [view, area] : tracked_) {
    // Elsewhere the pointer may be over another window that covers this one.
    if (isPointerAround(area->view())) states_.set(view, isUnderPointer(area->view()));
  }
  states_.tellSoon();
}

void HoverTracker::leaveAll() {
  for (auto& watched : watched_) watched.isInside = false;
  for (const auto& [view, area] : tracked_) states_.set(view, false);
  states_.tell();
}

bool HoverTracker::isPointerAround(NSView* view) const {
  for (const auto& watched : watched_) {
    if (watched.isInside && [view isDescendantOf:watched.area->view()]) return true;
  }
  return false;
}

}  // namespace quillmont
