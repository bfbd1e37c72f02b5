// A symbol on the panel.
#pragma once

#include "platform/macos/views/MountedView.h"

@interface QMSymbolView : NSImageView {
 @public
  BOOL takesMouse;
}
@end

namespace quillmont {

class SymbolView : public MountedView {
 public:
  SymbolView();

  NSView* view() const override { return view_; }
  void take(const NativeProperties& properties) override;
  void setTakesMouse(bool takesMouse) override { view_.get()->takesMouse = takesMouse; }

 private:
  const Retained<QMSymbolView*> view_;
};

}  // namespace quillmont
