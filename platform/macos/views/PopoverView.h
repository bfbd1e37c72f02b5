// A popover that hangs from a view of the panel.
#pragma once

#include <functional>

#include "platform/macos/views/MountedView.h"
#include "platform/macos/views/PanelArea.h"
#include "platform/view/ViewActions.h"

@interface QMPopoverKeeper : NSObject <NSPopoverDelegate> {
 @public
  std::function<void()> onClosing;
  std::function<bool()> mayClose;
}
@end

namespace quillmont {

/// Open from present() on, until it is closed by the user, which asks to be dismissed, or leaves.
/// The user closes it in AppKit's way, but not by a press on its anchor, which has its own way of
/// closing it.
class PopoverView : public MountedView {
 public:
  /// `anchor` is its parent view, and outlives it.
  PopoverView(const MountedView& anchor, ViewId id, ViewActions& actions);
  ~PopoverView() override;

  /// What it shows.
  NSView* view() const override { return content_; }
  Point childOrigin() const override { return {}; }
  void take(const NativeProperties& properties) override;
  void place(const Rect& frame) override;
  void leave() override { close(); }

  /// Opens it, or brings it to where its anchor is now. Waits while the anchor is on no screen.
  void present();

  /// The panel goes; it asks to be dismissed.
  void dismiss();

  bool isShown() const { return [popover_ isShown]; }
  NSPopover* popover() const { return popover_; }

 private:
  void closes();
  void close();
  void disconnect();
  bool isPressOnAnchor() const;

  const MountedView& anchor_;
  const ViewId id_;
  ViewActions& actions_;
  const Retained<NSPopover*> popover_;
  const Retained<NSViewController*> controller_;
  const Retained<QMPanelArea*> content_;
  const Retained<QMPopoverKeeper*> keeper_;
  RectEdge edge_ = RectEdge::maxY;
  bool closed_ = false;
};

}  // namespace quillmont
