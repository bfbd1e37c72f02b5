// The desktop shell on Linux: whatever bar, display and bus the session has, down to none.
#pragma once

#include "platform/Desktop.h"
#include "platform/linux/LinuxApplication.h"
#include "platform/linux/desktop/Appearance.h"
#include "platform/linux/desktop/GlobalMouseMonitor.h"
#include "platform/linux/desktop/SwallowGuard.h"

namespace quillmont {

/// Main thread, with a QApplication. Must outlive the items and popovers that it makes.
class LinuxDesktop : public Desktop {
 public:
  /// `application` must outlive the desktop.
  explicit LinuxDesktop(const LinuxApplication& application);

  /// Never null: a bar may come at any time. The length is always the icon's.
  std::unique_ptr<StatusItem> makeStatusItem(double length) override;
  std::unique_ptr<Popover> makePopover() override;

  /// On X11 only, and not within Wayland.
  std::optional<EventMonitorToken> addGlobalEventMonitor(EventMask mask,
                                                         EventHandler handler) override;
  void removeEventMonitor(EventMonitorToken token) override;

  /// While the program is being ended, kAlertAborted at once.
  std::int64_t runModal(const Alert& alert) override;

 private:
  void popoverClosed(bool byLeaving);

  const LinuxApplication& application_;
  Appearance appearance_;
  Subscription appearanceChange_;
  SwallowGuard guard_;
  GlobalMouseMonitor mouse_;
};

}  // namespace quillmont
