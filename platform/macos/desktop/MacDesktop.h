// The desktop shell on a Mac.
#pragma once

#include "platform/Desktop.h"
#include "platform/macos/desktop/AppKitApplication.h"
#include "platform/macos/desktop/GlobalMouseMonitor.h"
#include "platform/macos/desktop/SwallowGuard.h"

namespace quillmont {

/// Main thread, with an application object. Must outlive the items and popovers that it makes.
class MacDesktop : public Desktop {
 public:
  /// `application` must outlive the desktop.
  explicit MacDesktop(const AppKitApplication& application) : application_(application) {}

  std::unique_ptr<StatusItem> makeStatusItem(double length) override;
  std::unique_ptr<Popover> makePopover() override;
  std::optional<EventMonitorToken> addGlobalEventMonitor(EventMask mask,
                                                         EventHandler handler) override;
  void removeEventMonitor(EventMonitorToken token) override;

  /// While the program is being ended, kAlertAborted at once.
  std::int64_t runModal(const Alert& alert) override;

 private:
  const AppKitApplication& application_;
  SwallowGuard guard_;
  GlobalMouseMonitor mouse_;
};

}  // namespace quillmont
