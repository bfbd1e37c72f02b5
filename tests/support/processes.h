// What a process has of the system, seen from outside.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace quillmont::testing {

/// How many descriptors are open; 0 once the process is gone.
long openDescriptors(pid_t pid);

/// Whether it has ended, its first thread at least, and is not yet waited for.
bool isZombie(const std::string& pid);

/// Identifiers of children that have ended and are not yet waited for.
std::vector<std::string> zombiesOf(pid_t pid);

}  // namespace quillmont::testing
