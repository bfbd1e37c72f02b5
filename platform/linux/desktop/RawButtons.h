// The pointer's buttons anywhere on an X11 display.
#pragma once

#include <QSocketNotifier>
#include <cstdint>
#include <functional>
#include <memory>

#include "platform/linux/desktop/x11.h"

namespace quillmont {

/// Tells of every press and release, whichever window it goes to and whoever has grabbed the
/// pointer, from when it is made until it is destroyed, which a handler may do. Main thread.
class RawButtons {
 public:
  /// `button`: 1 left, 2 middle, 3 right, further ones for wheels and the rest.
  using Handler = std::function<void(std::uint32_t button, bool pressed)>;

  /// Null where the display does not tell, or not of everything.
  static std::unique_ptr<RawButtons> listen(Handler handler);

  ~RawButtons() { *alive_ = false; }

 private:
  RawButtons(X11Connection connection, std::uint8_t extension, Handler handler);
  void readEvents();

  X11Connection connection_;
  std::uint8_t extension_;  ///< the major code of the input extension's events
  Handler handler_;
  QSocketNotifier ready_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace quillmont
