// The desktop shell: status bar, popovers, what the pointer does elsewhere, alerts.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "platform/Alert.h"
#include "platform/Event.h"
#include "platform/Popover.h"
#include "platform/StatusItem.h"

namespace quillmont {

/// Main thread.
class Desktop {
 public:
  virtual ~Desktop() = default;

  /// An item of `length` points in the system's status bar, shown as soon as there is a bar. Null
  /// where the desktop never has one.
  virtual std::unique_ptr<StatusItem> makeStatusItem(double length) = 0;

  /// A new, empty popover that closes only when it is told to.
  virtual std::unique_ptr<Popover> makePopover() = 0;

  /// Calls `handler` for every event of a type in `mask` that goes to another program; never for
  /// one of this program's own. Nothing where the system does not tell.
  virtual std::optional<EventMonitorToken> addGlobalEventMonitor(EventMask mask,
                                                                 EventHandler handler) = 0;
  virtual void removeEventMonitor(EventMonitorToken token) = 0;

  /// Shows the alert and serves the run loop until a button answers it.
  virtual std::int64_t runModal(const Alert& alert) = 0;
};

}  // namespace quillmont
