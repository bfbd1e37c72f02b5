// What lies behind all windows of a desktop.
#pragma once

#include <memory>
#include <string>

#include "tests/support/XScreen.h"

struct xcb_connection_t;

namespace quillmont::testing {

/// One colour over the whole root window, known to compositors; it goes with the object.
class Wallpaper {
 public:
  /// `display` as in DISPLAY. Throws when there is no such display.
  Wallpaper(const std::string& display, const ScreenColor& color);

 private:
  struct Disconnect {
    void operator()(xcb_connection_t* connection) const;
  };
  const std::unique_ptr<xcb_connection_t, Disconnect> connection_;
};

}  // namespace quillmont::testing
