// Tells a click that closes a panel from one that opens it.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

namespace quillmont {

/// Many a bar keeps the window of a status item to itself, and says that it was clicked when the
/// button is released. The press was a click outside of the panel, and closed it; the activation
/// that follows would open it again. It is to be swallowed: one, up to kGrace after the release of
/// the button whose press closed the panel. Main thread.
class SwallowGuard {
 public:
  using Time = std::chrono::steady_clock::time_point;
  static constexpr std::chrono::milliseconds kGrace{300};

  /// The panel was closed by the press of `button` that is being told.
  void closedByPress(std::uint32_t button);

  /// The panel was closed because another program was turned to, perhaps by such a press.
  void closedByLeaving(Time now);

  void pressed();  ///< another press: what follows belongs to that one
  void released(std::uint32_t button, Time now);

  /// Whether the activation that has come is to be dropped.
  bool swallows(Time now);

 private:
  std::optional<std::uint32_t> heldButton_;
  std::optional<Time> graceEnd_;
};

}  // namespace quillmont
