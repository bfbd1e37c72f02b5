// Login items: the desktop's autostart entries that stand for launch agents, one file each, named
// for the agent's label (Desktop Application Autostart Specification 0.5).
#pragma once

#include <string>

#include "platform/Result.h"
#include "platform/linux/tools/launchctl/LaunchAgent.h"

namespace quillmont {

/// Whether anything stands where the entry of the agent `label` belongs in `folder`.
bool loginItemExists(const std::string& folder, const std::string& label);

/// Makes or replaces the entry of `agent`, whose file is `agentPath`, and the folder if it is
/// missing. A symbolic link in its place is replaced, never followed. An agent that is not to run
/// at login has no entry: one that stands there from before is removed.
Result<void> putLoginItem(const std::string& folder, const LaunchAgent& agent,
                          const std::string& agentPath);

/// Removes the entry of the agent `label`, but only one that was made from a launch agent. Answers
/// whether there was one. Failure: it is there and cannot be read or removed.
Result<bool> removeLoginItem(const std::string& folder, const std::string& label);

}  // namespace quillmont
