// A launch agent: what a property list of the Mac's service manager asks for.
#pragma once

#include <string>
#include <vector>

#include "platform/PropertyList.h"
#include "platform/Result.h"

namespace quillmont {

struct LaunchAgent {
  std::string label;                   ///< names the agent; no slash in it
  std::vector<std::string> arguments;  ///< the program and its arguments
  bool runAtLoad = false;              ///< whether it starts at login
  bool operator==(const LaunchAgent&) const = default;
};

/// Reads the entries Label, ProgramArguments and RunAtLoad (false if absent); others are not
/// looked at. Failure: what is missing or of the wrong type.
Result<LaunchAgent> launchAgentOf(const PropertyList& list);

/// Reads the agent file at `path`. Failure also: no regular file, not readable, no property list.
Result<LaunchAgent> readLaunchAgent(const std::string& path);

/// The label that an agent file carries by custom: its file name without ".plist".
std::string labelOfFileName(const std::string& path);

}  // namespace quillmont
