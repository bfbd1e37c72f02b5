// The command lines of the service manager tool.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace quillmont {

enum class ServiceVerb { bootstrap, bootout, load, unload };

struct ServiceCommand {
  ServiceVerb verb = ServiceVerb::load;
  std::string userIdentifier;  ///< decimal, of the domain "gui/<uid>"; empty for the legacy verbs
  std::string agentPath;
  bool operator==(const ServiceCommand&) const = default;
};

/// Reads `bootstrap gui/<uid> <path>`, `bootout gui/<uid> <path>`, `load <path>` and
/// `unload <path>`; nothing for any other arguments. A path that holds a space and came through a
/// shell without quotes is one argument too many, and so is refused like the Mac's tool does.
std::optional<ServiceCommand> parseServiceCommand(const std::vector<std::string>& arguments);

/// How the tool ends.
struct ServiceOutcome {
  int status = 0;
  std::string complaint;  ///< for standard error; empty if there is none
  bool operator==(const ServiceOutcome&) const = default;
};

/// Carries `command` out for the user `userIdentifier` (decimal) on the login items in
/// `autostartFolder`. Blocks for file access only.
ServiceOutcome runServiceCommand(const ServiceCommand& command, const std::string& userIdentifier,
                                 const std::string& autostartFolder);

}  // namespace quillmont
