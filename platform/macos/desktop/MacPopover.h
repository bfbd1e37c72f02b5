// A popover of AppKit's, with a panel in it.
#pragma once

#include <functional>
#include <memory>

#include "platform/Popover.h"
#include "platform/view/HostingController.h"

namespace quillmont {

/// It has the size of its content's own layout. While it is shown it has the keyboard, which
/// then goes back to the program that had it; Escape closes a transient one. Main thread.
class MacPopover : public Popover {
 public:
  /// `onClosing` is told when it begins to close, whoever closes it.
  explicit MacPopover(std::function<void()> onClosing);
  ~MacPopover() override;
  MacPopover(const MacPopover&) = delete;
  MacPopover& operator=(const MacPopover&) = delete;

  void setContent(std::shared_ptr<HostingController> content) override;
  void setBehavior(PopoverBehavior behavior) override;

  /// True until the closing, which may be seen, has ended.
  bool isShown() const override;

  /// One without content does not come up, nor does one whose button is on no screen.
  void show(StatusItemButton& button, RectEdge edge) override;
  void performClose(Sender sender) override;

  /// AppKit's object, an NSPopover.
  void* popover() const;

 private:
  class Native;
  std::shared_ptr<Native> native_;
};

}  // namespace quillmont
