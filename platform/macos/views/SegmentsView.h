// Segments in a row, one of which may be selected.
#pragma once

#include <functional>

#include "platform/macos/views/MountedView.h"
#include "platform/view/ViewActions.h"

@interface QMSegmentsView : NSSegmentedControl {
 @public
  std::function<void()> onChoice;  ///< may be the end of the view's owner
}
@end

namespace quillmont {

class SegmentsView : public MountedView {
 public:
  SegmentsView(ViewId id, ViewActions& actions);
  ~SegmentsView() override;

  NSView* view() const override { return view_; }
  void take(const NativeProperties& properties) override;
  bool takesFocus() const override { return true; }

  static void setLabels(QMSegmentsView* segments, const std::vector<std::string>& labels);

 private:
  void setSelected(std::optional<std::size_t> selected);
  void chosen();

  const ViewId id_;
  ViewActions& actions_;
  const Retained<QMSegmentsView*> view_;
  std::optional<std::size_t> selected_;
};

}  // namespace quillmont
