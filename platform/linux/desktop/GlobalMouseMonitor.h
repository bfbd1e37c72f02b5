// What the pointer's buttons do in other programs.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>

#include "platform/Event.h"
#include "platform/linux/desktop/RawButtons.h"

namespace quillmont {

/// Listens only while a monitor is installed, and on until the buttons that were pressed meanwhile
/// have been released. Main thread.
class GlobalMouseMonitor {
 public:
  /// What it rests on.
  struct Source {
    /// Calls the handler until its answer is let go of; null where the display does not tell.
    std::function<std::shared_ptr<void>(RawButtons::Handler)> listen;
    std::function<bool()> pointerIsOutside;  ///< not on a window of this program
  };

  /// The display's buttons, and the pointer's place at the time of asking.
  static Source display();

  explicit GlobalMouseMonitor(Source source = display());

  /// As Desktop::addGlobalEventMonitor. No token where the display does not tell.
  std::optional<EventMonitorToken> add(EventMask mask, EventHandler handler);
  void remove(EventMonitorToken token);

  /// The button whose press in another program the handlers are being told of, while they are.
  std::optional<std::uint32_t> toldButton() const { return toldButton_; }

  /// Every press, before it is told, and every release, wherever they go.
  std::function<void(std::uint32_t button, bool pressed)> onButton = [](std::uint32_t, bool) {};

 private:
  struct Monitor {
    EventMask mask;
    EventHandler handler;
  };

  void take(std::uint32_t button, bool pressed);
  void tell(std::uint32_t button);
  void stopWhenIdle();

  Source source_;
  std::shared_ptr<void> buttons_;
  std::map<EventMonitorToken, std::shared_ptr<Monitor>> monitors_;
  EventMonitorToken lastToken_ = 0;
  std::set<std::uint32_t> held_;
  std::optional<std::uint32_t> toldButton_;
};

/// The type of a button's press. None for a wheel, whose turns are button presses on X11.
std::optional<EventType> eventTypeOfButton(std::uint32_t button);

}  // namespace quillmont
