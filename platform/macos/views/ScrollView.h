// A part of the panel that scrolls vertically.
#pragma once

#include <functional>

#include "platform/macos/views/MountedView.h"
#include "platform/macos/views/PanelArea.h"

@interface QMScrollView : NSScrollView {
 @public
  std::function<void()> onScroll;
}
@end

namespace quillmont {

/// The offset from the top lasts while the content changes, as far as there is content.
class ScrollView : public MountedView {
 public:
  /// `onScroll` is told whenever the content has moved.
  explicit ScrollView(std::function<void()> onScroll);
  ~ScrollView() override;

  NSView* view() const override { return view_; }
  NSView* childArea() const override { return content_; }
  Point childOrigin() const override { return {}; }
  void take(const NativeProperties& properties) override;
  void place(const Rect& frame) override;

 private:
  void arrange();
  void scrollTo(double offset);

  const Retained<QMScrollView*> view_;
  const Retained<QMPanelArea*> content_;
  Size contentSize_;
};

}  // namespace quillmont
