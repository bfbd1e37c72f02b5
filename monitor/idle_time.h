// When an image counts as idle, and for how long it has been so.
#pragma once

#include "platform/Clock.h"

namespace quillmont {

/// Seconds of idleness at `now`: since the last use, or since the mount if that came later.
inline double idleSecondsAt(TimePoint now, TimePoint mountTime, TimePoint lastUse) {
  return secondsBetween(lastUse >= mountTime ? lastUse : mountTime, now);
}

/// Whether an idle image is due for ejection; reaching the timeout exactly is enough.
inline bool hasTimedOut(bool isEnabled, double timeoutSeconds, double idleSeconds) {
  return isEnabled && timeoutSeconds <= idleSeconds;
}

}  // namespace quillmont
