// A panel's native views as AppKit's.
#pragma once

#include <memory>
#include <vector>

#include "platform/view/NativeView.h"
#include "platform/view/ViewActions.h"

namespace quillmont {

class ViewTree;

/// Main thread, with an NSApplication. What the user does is told from within the event that it
/// came with, never from within apply(); the views may change or go while it is told. The views
/// themselves are to be had from mounted_views.h.
class AppKitMount : public NativeMount {
 public:
  /// `actions` must outlive the mount.
  explicit AppKitMount(ViewActions& actions);
  ~AppKitMount() override;
  AppKitMount(const AppKitMount&) = delete;
  AppKitMount& operator=(const AppKitMount&) = delete;

  void apply(const std::vector<ViewChange>& changes, Size size) override;

  /// The panel has come onto the screen, or is about to leave it; it is taken to be on it as soon
  /// as its view is in a window. A panel that leaves dismisses its popovers, and lets go of what
  /// is pressed; the pointer has left its views.
  void setVisible(bool visible);

  /// Paints everything anew, in the colours of now. Views do so by themselves when the appearance
  /// of their own window changes.
  void appearanceDidChange();

 private:
  friend ViewTree& treeOf(const AppKitMount& mount);

  const std::unique_ptr<ViewTree> tree_;
};

}  // namespace quillmont
