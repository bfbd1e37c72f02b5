// Threads of background quality.
#pragma once

#include "platform/posix/ThreadQueue.h"

namespace quillmont {

/// Named with its label; of the quality of service whose work the system puts behind everything
/// that the user looks at. Each task has an autorelease pool of its own: a thread that was not made
/// by the frameworks drains none by itself.
extern const BackgroundThread kBackgroundThread;

}  // namespace quillmont
