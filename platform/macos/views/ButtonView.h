// A button without looks of its own.
#pragma once

#include "platform/macos/views/MountedView.h"
#include "platform/macos/views/PressArea.h"
#include "platform/view/ViewActions.h"

namespace quillmont {

/// Its children are its label.
class ButtonView : public MountedView {
 public:
  ButtonView(ViewId id, ViewActions& actions);
  ~ButtonView() override;

  NSView* view() const override { return view_; }
  void take(const NativeProperties& properties) override;
  bool takesFocus() const override { return true; }
  void letGo() override { [view_ letGo]; }

 private:
  void dim();

  const Retained<QMPressArea*> view_;
  double opacity_ = 1;
};

}  // namespace quillmont
