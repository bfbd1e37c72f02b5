#include "platform/linux/desktop/GlobalMouseMonitor.h"

#include <QCursor>
#include <QGuiApplication>
#include <QWindow>
#include <utility>

namespace quillmont {

std::optional<EventType> eventTypeOfButton(std::uint32_t button) {
  constexpr std::uint32_t kFirstWheel = 4;
  constexpr std::uint32_t kLastWheel = 7;
  if (button == 1) return EventType::leftMouseDown;
  if (button == 3) return EventType::rightMouseDown;
  if (button == 0 || (button >= kFirstWheel && button <= kLastWheel)) return std::nullopt;
  return EventType::otherMouseDown;
}

/// Raw events name no place. The server is asked, which knows what lies on top of what, which part
/// of a window takes clicks, and also the window of a status item that a bar has taken in.
GlobalMouseMonitor::Source GlobalMouseMonitor::display() {
  return {&RawButtons::listen,
          [] { return QGuiApplication::topLevelAt(QCursor::pos()) == nullptr; }};
}

GlobalMouseMonitor::GlobalMouseMonitor(Source source) : source_(std::move(source)) {}

std::optional<EventMonitorToken> GlobalMouseMonitor::add(EventMask mask, EventHandler handler) {
  if (!buttons_) {
    buttons_ =
        source_.listen([this](std::uint32_t button, bool pressed) { take(button, pressed); });
  }
  if (!buttons_) return std::nullopt;
  monitors_.emplace(++lastToken_, std::make_shared<Monitor>(Monitor{mask, std::move(handler)}));
  return lastToken_;
}

void GlobalMouseMonitor::remove(EventMonitorToken token) {
  const auto found = monitors_.find(token);
  if (found == monitors_.end()) return;
  // What the handler holds may remove other monitors when it goes: let it go last.
  const auto monitor = found->second;
  monitors_.erase(found);
  stopWhenIdle();
}

void GlobalMouseMonitor::take(std::uint32_t button, bool pressed) {
  onButton(button, pressed);
  if (pressed) {
    held_.insert(button);
    if (source_.pointerIsOutside()) tell(button);
  } else {
    held_.erase(button);
  }
  stopWhenIdle();
}

void GlobalMouseMonitor::tell(std::uint32_t button) {
  const auto type = eventTypeOfButton(button);
  if (!type) return;
  const Event event{*type};
  const auto end = lastToken_;
  toldButton_ = button;
  for (auto next = monitors_.begin(); next != monitors_.end() && next->first <= end;) {
    const auto token = next->first;
    const auto monitor = next->second;
    if (monitor->mask & eventMaskOf(event.type)) monitor->handler(&event);
    next = monitors_.upper_bound(token);
  }
  toldButton_ = std::nullopt;
}

void GlobalMouseMonitor::stopWhenIdle() {
  if (!monitors_.empty() || !held_.empty() || toldButton_) return;
  buttons_ = nullptr;
}

}  // namespace quillmont
