// A view that holds others and draws nothing.
#pragma once

#include "platform/macos/views/MountedView.h"
#include "platform/macos/views/PanelArea.h"

namespace quillmont {

class GroupView : public MountedView {
 public:
  GroupView() : view_(adopt([[QMPanelArea alloc] initWithFrame:NSZeroRect])) {}
  ~GroupView() override { view_.get()->onWindowChange = nullptr; }

  NSView* view() const override { return view_; }
  QMPanelArea* area() const { return view_; }
  void take(const NativeProperties& properties) override {
    [view_ setAlphaValue:properties.opacity];
  }
  void setTakesMouse(bool takesMouse) override { [view_ setMouseLetThrough:!takesMouse]; }

 private:
  const Retained<QMPanelArea*> view_;
};

}  // namespace quillmont
