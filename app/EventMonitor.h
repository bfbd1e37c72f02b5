// Watches what the pointer does in other programs.
#pragma once

#include <optional>

#include "platform/Event.h"

namespace quillmont {

class Desktop;

/// Wraps one global event monitor. Main thread.
class EventMonitor {
 public:
  /// Installs nothing. `desktop` must outlive the monitor.
  EventMonitor(Desktop& desktop, EventMask mask, EventHandler handler);
  virtual ~EventMonitor() { EventMonitor::stop(); }
  EventMonitor(const EventMonitor&) = delete;
  EventMonitor& operator=(const EventMonitor&) = delete;

  /// Has every matching event handed to the handler. A second start without a stop in between
  /// leaves the first monitor installed, out of reach: the desktop may have closed what the monitor
  /// was for, and the handler finds nothing to do then.
  virtual void start();

  virtual void stop();

 private:
  std::optional<EventMonitorToken> monitor_;
  const EventMask mask_;
  const EventHandler handler_;
  Desktop& desktop_;
};

}  // namespace quillmont
