// An alert as a window.
#pragma once

#include <QPalette>
#include <cstdint>

#include "platform/Alert.h"

namespace quillmont {

/// Shows the alert in the middle of the screen, in front of everything, and serves the loop until
/// it is answered. Escape and the window's own close button answer for the button that cancels, or
/// for the last one. kAlertAborted when the loop ends meanwhile. Main thread.
std::int64_t runAlertDialog(const Alert& alert, const QPalette& palette);

}  // namespace quillmont
