// An alert as a Mac shows it.
#pragma once

#include <cstdint>

#include "platform/Alert.h"

namespace quillmont {

/// Brings the program to the front, shows the alert and serves the run loop until it is answered.
/// Return answers for the first button, Escape for the one that cancels, or else for the last.
/// kAlertAborted when it goes without a button. Main thread.
std::int64_t runAlertDialog(const Alert& alert);

}  // namespace quillmont
