// A panel's native views as widgets.
#pragma once

#include <QWidget>
#include <memory>
#include <vector>

#include "platform/view/NativeView.h"
#include "platform/view/ViewActions.h"

namespace quillmont {

class ViewTree;

/// Main thread, with a QApplication. What the user does is told from within the event that it came
/// with, never from within apply(); the views may change or go while it is told.
class QtMount : public NativeMount {
 public:
  /// `actions` must outlive the mount.
  explicit QtMount(ViewActions& actions);
  ~QtMount() override;
  QtMount(const QtMount&) = delete;
  QtMount& operator=(const QtMount&) = delete;

  /// The panel: a widget with a transparent ground that always has the panel's size. It is the
  /// mount's until it is given a parent, which then deletes it; the mount bears both orders. Its
  /// popovers are dismissed when it is hidden.
  QWidget* widget();

  void apply(const std::vector<ViewChange>& changes, Size size) override;

  /// Paints everything anew, in the colours of now.
  void appearanceDidChange();

  /// The widget of a view; null when there is none of that name.
  QWidget* widgetOf(ViewId view) const;

 private:
  const std::unique_ptr<ViewTree> tree_;
};

}  // namespace quillmont
