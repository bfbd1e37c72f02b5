// A checkbox with its title.
#pragma once

#include "platform/macos/views/MountedView.h"
#include "platform/view/ViewActions.h"

@interface QMCheckboxView : NSButton {
 @public
  std::function<void(bool isOn)> onToggle;  ///< may be the end of the view's owner
}
@end

namespace quillmont {

class CheckboxView : public MountedView {
 public:
  CheckboxView(ViewId id, ViewActions& actions);
  ~CheckboxView() override;

  NSView* view() const override { return view_; }
  void take(const NativeProperties& properties) override;
  bool takesFocus() const override { return true; }

  /// As large as a checkbox with that title asks to be.
  static NSSize sizeOf(QMCheckboxView* checkbox, const std::string& title, const Font& font);

 private:
  const Retained<QMCheckboxView*> view_;
};

}  // namespace quillmont
