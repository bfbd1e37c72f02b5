#include "platform/macos/desktop/MacDesktop.h"

#include <utility>

#include "platform/macos/desktop/MacPopover.h"
#include "platform/macos/desktop/MacStatusItem.h"
#include "platform/macos/desktop/alert_dialog.h"

namespace quillmont {

std::unique_ptr<StatusItem> MacDesktop::makeStatusItem(double length) {
  return std::make_unique<MacStatusItem>(length, [this] { return guard_.swallows(); });
}

std::unique_ptr<Popover> MacDesktop::makePopover() {
  return std::make_unique<MacPopover>([this] { guard_.closed(); });
}

std::optional<EventMonitorToken> MacDesktop::addGlobalEventMonitor(EventMask mask,
                                                                   EventHandler handler) {
  return mouse_.add(mask, std::move(handler));
}

void MacDesktop::removeEventMonitor(EventMonitorToken token) {
  mouse_.remove(token);
}

std::int64_t MacDesktop::runModal(const Alert& alert) {
  if (application_.isTerminating()) return kAlertAborted;
  return runAlertDialog(alert);
}

}  // namespace quillmont
