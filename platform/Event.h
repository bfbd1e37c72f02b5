// What the pointer does elsewhere on the desktop.
#pragma once

#include <cstdint>
#include <functional>

namespace quillmont {

enum class EventType { leftMouseDown = 1, rightMouseDown = 3, otherMouseDown = 25 };

struct Event {
  EventType type;
};

/// A set of event types: bit n stands for type n.
using EventMask = std::uint64_t;

constexpr EventMask eventMaskOf(EventType type) {
  return EventMask{1} << static_cast<int>(type);
}

/// Takes the event, or null where the system names none.
using EventHandler = std::function<void(const Event*)>;

/// Names an installed monitor. Letting go of it removes nothing.
using EventMonitorToken = std::uint64_t;

}  // namespace quillmont
