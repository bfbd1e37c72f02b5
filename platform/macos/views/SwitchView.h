// A switch.
#pragma once

#include "platform/macos/views/MountedView.h"
#include "platform/macos/views/PressArea.h"
#include "platform/view/ViewActions.h"

/// AppKit's own switch is always in the colour that the user has chosen for all programs; this one
/// has its tint.
@interface QMSwitchArea : QMPressArea {
 @public
  quillmont::Color tint;
 @private
  double _position;  ///< of the knob: 0 is off, 1 is on
  NSTimer* _slide;
}

/// Shows its state; the knob slides there if the user can see it and wants things to move.
- (void)showState;

@end

namespace quillmont {

class SwitchView : public MountedView {
 public:
  SwitchView(ViewId id, ViewActions& actions);
  ~SwitchView() override;

  NSView* view() const override { return view_; }
  void take(const NativeProperties& properties) override;
  bool takesFocus() const override { return true; }
  void letGo() override { [view_ letGo]; }

 private:
  const Retained<QMSwitchArea*> view_;
};

}  // namespace quillmont
