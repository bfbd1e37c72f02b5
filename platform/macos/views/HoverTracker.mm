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
  auto& tracked = tracked_[view];
  if (tracked.area && tracked.area->view() == native) return;
  tracked.area =
      std::make_unique<Area>(native, [this, view](bool isInside) { changed(view, isInside); });
}

void HoverTracker::forget(ViewId view) {
  tracked_.erase(view);
}

void HoverTracker::release() {
  held_ = false;
  tellSoon();
}

void HoverTracker::lookAgain() {
  for (auto& [view, tracked] : tracked_) {
    // Elsewhere the pointer may be over another window that covers this one.
    if (!isPointerAround(tracked.area->view())) continue;
    tracked.isInside = isUnderPointer(tracked.area->view());
  }
  tellSoon();
}

void HoverTracker::leaveAll() {
  for (auto& watched : watched_) watched.isInside = false;
  for (auto& [view, tracked] : tracked_) tracked.isInside = false;
  if (!held_) tell();
}

void HoverTracker::changed(ViewId view, bool isInside) {
  const auto found = tracked_.find(view);
  if (found == tracked_.end()) return;
  found->second.isInside = isInside;
  if (!held_) tell();
}

bool HoverTracker::isPointerAround(NSView* view) const {
  for (const auto& watched : watched_) {
    if (watched.isInside && [view isDescendantOf:watched.area->view()]) return true;
  }
  return false;
}

void HoverTracker::tellSoon() {
  if (std::exchange(scheduled_, true)) return;
  later([weak = std::weak_ptr(self_)] {
    const auto self = weak.lock();
    if (!self) return;
    (*self)->scheduled_ = false;
    if (!(*self)->held_) (*self)->tell();
  });
}

/// What is told may be the end of the tracker.
void HoverTracker::tell() {
  const std::weak_ptr<HoverTracker*> self = self_;
  tellThose(false);
  if (!self.expired()) tellThose(true);
}

/// An action may change the panel, and with it what is tracked.
void HoverTracker::tellThose(bool areInside) {
  const std::weak_ptr<HoverTracker*> self = self_;
  std::vector<ViewId> views;
  for (const auto& [view, tracked] : tracked_) {
    if (tracked.isInside == areInside && tracked.toldInside != areInside) views.push_back(view);
  }
  for (const auto view : views) {
    if (self.expired()) return;
    const auto found = tracked_.find(view);
    if (found == tracked_.end() || found->second.isInside != areInside) continue;
    found->second.toldInside = areInside;
    actions_.hover(view, areInside);
  }
}

}  // namespace quillmont
