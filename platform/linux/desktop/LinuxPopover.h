// A popover as a window with an arrow.
#pragma once

#include <functional>
#include <memory>

#include "platform/Popover.h"
#include "platform/linux/desktop/Appearance.h"
#include "platform/linux/desktop/ArrowWindow.h"
#include "platform/linux/views/QtMetrics.h"
#include "platform/linux/views/QtMount.h"
#include "platform/view/HostingController.h"

namespace quillmont {

/// A transient one is also closed by Escape and, where the system tells nothing of clicks in other
/// programs, by turning to one of them. Main thread.
class LinuxPopover : public Popover {
 public:
  /// `onClosed` is told after each closing, whether the user has left the program by it.
  /// `appearance` must outlive the popover.
  LinuxPopover(Appearance& appearance, std::function<void(bool byLeaving)> onClosed);
  ~LinuxPopover() override;

  void setContent(std::shared_ptr<HostingController> content) override;
  void setBehavior(PopoverBehavior behavior) override { behavior_ = behavior; }
  bool isShown() const override;

  /// Where the button's place is unknown, the popover comes up in a corner of the screen. One
  /// without content does not come up.
  void show(StatusItemButton& button, RectEdge edge) override;
  void performClose(Sender sender) override;

 private:
  void close(bool byLeaving);
  void release();
  void takeColors();

  Appearance& appearance_;
  std::function<void(bool)> onClosed_;
  PopoverBehavior behavior_ = PopoverBehavior::applicationDefined;
  std::shared_ptr<HostingController> content_;
  std::unique_ptr<QtMount> mount_;
  std::unique_ptr<QtMetrics> metrics_;
  std::unique_ptr<ArrowWindow> window_;  ///< with the content; null before there is any
  Subscription appearanceChange_, end_;
};

}  // namespace quillmont
