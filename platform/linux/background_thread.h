// Threads that yield to others.
#pragma once

#include "platform/posix/ThreadQueue.h"

namespace quillmont {

/// Named after the last part of its label, as far as there is room; nice 10, which the programs
/// that it starts inherit.
extern const BackgroundThread kBackgroundThread;

}  // namespace quillmont
