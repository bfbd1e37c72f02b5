#include "app/EventMonitor.h"

#include <utility>

#include "platform/Desktop.h"

namespace quillmont {

EventMonitor::EventMonitor(Desktop& desktop, EventMask mask, EventHandler handler)
    : mask_(mask), handler_(std::move(handler)), desktop_(desktop) {}

void EventMonitor::start() {
  monitor_ = desktop_.addGlobalEventMonitor(mask_, handler_);
}

void EventMonitor::stop() {
  if (const auto token = std::exchange(monitor_, std::nullopt)) desktop_.removeEventMonitor(*token);
}

}  // namespace quillmont
