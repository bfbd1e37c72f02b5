// Which processes of one user run the program: lock files in a folder, one a process, named by its
// process identifier and locked with flock() as long as the process lives.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/Log.h"
#include "platform/posix/Descriptor.h"

namespace quillmont {

/// The running instances, the calling process among them, oldest first. The first call that finds
/// no other one registers the calling process: `registration` then holds its lock and must be kept
/// for the rest of the process. A process that has found another one is about to leave; it is not
/// registered, so that nobody mistakes it for the one that stays.
///
/// Looking and registering are one step under the lock of `folder`/.gate: of processes that start
/// at one moment, exactly one finds itself alone. A gate that stays closed for `patience` (its
/// holder was stopped) is passed by. What goes wrong is logged and answered with what can be seen.
std::vector<std::int32_t> runningInstances(
    const std::string& folder, Descriptor& registration, Log& log,
    std::chrono::milliseconds patience = std::chrono::seconds(2));

}  // namespace quillmont
