// Where the pointer is.
#pragma once

#import <AppKit/AppKit.h>

#include <functional>
#include <memory>
#include <unordered_map>
#include <vector>

#include "platform/macos/Retained.h"
#include "platform/view/HoverStates.h"

/// The owner of a tracking area.
@interface QMPointerWatcher : NSObject {
 @public
  std::function<void(bool isInside)> onChange;
}
- (void)mouseEntered:(NSEvent*)event;
- (void)mouseExited:(NSEvent*)event;
@end

namespace quillmont {

/// Tells when the pointer comes to a view and leaves it, also while the program is not the active
/// one. Main thread.
class HoverTracker {
 public:
  /// `actions` must outlive the tracker.
  explicit HoverTracker(ViewActions& actions);

  /// `area` is all of what is in a window, and is told of itself; the rest is within it.
  void watch(NSView* area);
  void unwatch(NSView* area);

  void track(ViewId view, NSView* native);

  /// Nothing more is told of the view, not even that it has been left.
  void forget(ViewId view);

  /// Between these two, nothing is told; what has happened by then is told soon after.
  void hold() { states_.hold(); }
  void release() { states_.release(); }

  /// Looks for the pointer itself: views have moved below it, of which AppKit does not always tell.
  void lookAgain();

  /// The pointer has left them all; told at once.
  void leaveAll();

 private:
  /// Told of the pointer for as long as it lives.
  class Area {
   public:
    Area(NSView* view, std::function<void(bool)> onChange);
    ~Area();
    Area(const Area&) = delete;
    Area& operator=(const Area&) = delete;
    NSView* view() const { return view_; }

   private:
    const Retained<NSView*> view_;
    const Retained<QMPointerWatcher*> watcher_;
    Retained<NSTrackingArea*> area_;
  };

  struct Watched {
    std::unique_ptr<Area> area;
    bool isInside = false;
  };
  bool isPointerAround(NSView* view) const;

  HoverStates states_;
  std::vector<Watched> watched_;
  std::unordered_map<ViewId, std::unique_ptr<Area>> tracked_;
};

}  // namespace quillmont
