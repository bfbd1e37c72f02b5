// What the pointer's buttons do in other programs.
#pragma once

#include <map>
#include <memory>
#include <optional>

#include "platform/Event.h"

namespace quillmont {

/// AppKit's global monitors under names of this program's own. Main thread.
class GlobalMouseMonitor {
 public:
  GlobalMouseMonitor();
  ~GlobalMouseMonitor();
  GlobalMouseMonitor(const GlobalMouseMonitor&) = delete;
  GlobalMouseMonitor& operator=(const GlobalMouseMonitor&) = delete;

  /// As Desktop::addGlobalEventMonitor. No token where AppKit gives none.
  std::optional<EventMonitorToken> add(EventMask mask, EventHandler handler);

  /// A handler may remove its own monitor.
  void remove(EventMonitorToken token);

 private:
  class Monitor;
  std::map<EventMonitorToken, std::unique_ptr<Monitor>> monitors_;
  EventMonitorToken lastToken_ = 0;
};

}  // namespace quillmont
