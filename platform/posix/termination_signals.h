// The signals by which a system asks a program to end.
#pragma once

#include <signal.h>

namespace quillmont {

/// Blocks SIGTERM, SIGINT and SIGHUP in the calling thread, and so in all that it starts from then
/// on, for somebody to wait for them. Answers which of them: one that was ignored when the program
/// started (nohup) stays ignored.
sigset_t blockTerminationSignals();

}  // namespace quillmont
