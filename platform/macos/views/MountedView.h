// What every native view is beside a view of AppKit's. Main thread.
#pragma once

#import <AppKit/AppKit.h>

#include <vector>

#include "platform/macos/Retained.h"
#include "platform/view/NativeView.h"
#include "platform/view/figures.h"

namespace quillmont {

/// Owns the view. Whatever the view would tell of the user ends with its owner, for the view itself
/// may last longer: as long as AppKit is busy with it.
class MountedView {
 public:
  virtual ~MountedView() = default;

  virtual NSView* view() const = 0;

  /// Takes over what `properties` say of this kind of view. Nothing is told to anybody.
  virtual void take(const NativeProperties& properties) = 0;

  /// The view in which its children are.
  virtual NSView* childArea() const { return view(); }
  /// Where the children's coordinates begin in it.
  virtual Point childOrigin() const;

  /// Puts it at `frame`, in the coordinates of its parent's child area.
  virtual void place(const Rect& frame);

  /// Whether it takes the mouse itself, or leaves it to what is behind it.
  virtual void setTakesMouse(bool) {}

  /// Whether the keyboard can be on it.
  virtual bool takesFocus() const { return false; }

  /// A button that is pressed will not see the release.
  virtual void letGo() {}

  /// Goes from the screen.
  virtual void leave();

  /// The frame in the view's own coordinates.
  NSRect bounds() const;

 protected:
  /// How far it paints beyond its frame. Whoever answers something else now calls placeAgain().
  virtual Reach reach() const { return {}; }
  void placeAgain() { place(frame_); }

 private:
  Rect frame_;
};

/// The kind of content that a view was made for.
template <class Content>
const Content& contentOf(const NativeProperties& properties) {
  return std::get<Content>(properties.content);
}

}  // namespace quillmont
