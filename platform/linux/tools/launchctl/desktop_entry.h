// Desktop entries (Desktop Entry Specification 1.5), as the desktop starts them at login.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/tools/launchctl/LaunchAgent.h"

namespace quillmont {

/// `text` as the value of a key of type string.
std::string entryValue(std::string_view text);

/// A command line as the value of the key Exec: a desktop that reads it starts exactly `arguments`.
std::string execValue(const std::vector<std::string>& arguments);

/// The autostart entry that starts `agent` at login. It is hidden from menus, is skipped once its
/// program has been deleted, and names the agent file `agentPath`.
std::string autostartEntry(const LaunchAgent& agent, const std::string& agentPath);

/// Whether the text of a desktop entry says that it was made by autostartEntry().
bool isMadeFromLaunchAgent(std::string_view entry);

}  // namespace quillmont
