// A figure on the panel.
#pragma once

#include "platform/macos/views/MountedView.h"

@interface QMShapeView : NSView {
 @public
  quillmont::NativeShape shape;
  NSRect outlineRect;  ///< in its own coordinates
  BOOL takesMouse;
}
@end

namespace quillmont {

/// Larger than its frame by what stroke and shadow need. Nothing but a scroll view cuts them off.
class ShapeView : public MountedView {
 public:
  ShapeView() : view_(adopt([[QMShapeView alloc] initWithFrame:NSZeroRect])) {}

  NSView* view() const override { return view_; }
  void take(const NativeProperties& properties) override;
  void place(const Rect& frame) override;
  void setTakesMouse(bool takesMouse) override { view_.get()->takesMouse = takesMouse; }

 protected:
  Reach reach() const override;

 private:
  const Retained<QMShapeView*> view_;
};

}  // namespace quillmont
