// A system that has no room for the program when it starts.
#pragma once

namespace quillmont {

/// From now on an error of the system that nobody catches, such as "no more descriptors", ends the
/// process with one log line and status 1. Whatever else is not caught is a programming error, and
/// aborts as ever.
void endWithALogLineWithoutRoom();

/// Throws std::system_error where the process cannot have `count` more threads at the same time.
/// They are gone again when this returns.
void requireThreads(int count);

}  // namespace quillmont
