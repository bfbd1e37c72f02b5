// Where Qt can draw. It ends the process when it is sent to a display that does not answer, so that
// is found out before.
#pragma once

#include <string>

namespace quillmont {

struct Displays {
  bool x11 = false;
  bool wayland = false;
};

/// The displays that the environment names and that accept a connection. Wayland counts where Qt
/// has a plugin for it.
Displays findDisplays();

/// The value of Qt's option -platform: what to try, in this order, down to drawing nowhere. X11
/// comes first within a Wayland session too: there, and only there, a panel can choose its place.
std::string qtPlatforms(const Displays& displays);

}  // namespace quillmont
