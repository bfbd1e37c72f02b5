// A text on the panel.
#pragma once

#include "platform/macos/views/MountedView.h"

@interface QMLabelView : NSTextField {
 @public
  BOOL takesMouse;
}
@end

namespace quillmont {

/// Readers of the screen are told the whole text, however much of it can be seen.
class LabelView : public MountedView {
 public:
  LabelView();

  NSView* view() const override { return view_; }
  void take(const NativeProperties& properties) override;
  void setTakesMouse(bool takesMouse) override { view_.get()->takesMouse = takesMouse; }

 private:
  const Retained<QMLabelView*> view_;
};

}  // namespace quillmont
