#include "platform/linux/tools/launchctl/service_command.h"

#include <algorithm>
#include <string_view>

#include "platform/linux/tools/launchctl/LaunchAgent.h"
#include "platform/linux/tools/launchctl/login_items.h"

namespace quillmont {
namespace {

// The statuses that the Mac's tool ends with.
constexpr int kNotPermitted = 1;
constexpr int kNoSuchProcess = 3;
constexpr int kInputOutputError = 5;

std::optional<std::string> userOfDomain(std::string_view domain) {
  constexpr std::string_view kPrefix = "gui/";
  if (!domain.starts_with(kPrefix)) return std::nullopt;
  const auto user = domain.substr(kPrefix.size());
  const bool decimal = !user.empty() && std::all_of(user.begin(), user.end(), [](char character) {
    return character >= '0' && character <= '9';
  });
  if (!decimal) return std::nullopt;
  return std::string(user);
}

ServiceOutcome bootstrap(const std::string& agentPath, const std::string& folder) {
  const auto agent = readLaunchAgent(agentPath);
  if (!agent) return {kInputOutputError, "Bootstrap failed: 5: " + agent.errorText()};
  if (loginItemExists(folder, agent->label)) {
    return {kInputOutputError, "Bootstrap failed: 5: Input/output error"};
  }
  const auto added = putLoginItem(folder, *agent, agentPath);
  if (!added) return {kInputOutputError, "Bootstrap failed: 5: " + added.errorText()};
  return {};
}

ServiceOutcome load(const std::string& agentPath, const std::string& folder) {
  const auto agent = readLaunchAgent(agentPath);
  if (!agent) return {kInputOutputError, "Load failed: 5: " + agent.errorText()};
  const auto added = putLoginItem(folder, *agent, agentPath);
  if (!added) return {kInputOutputError, "Load failed: 5: " + added.errorText()};
  return {};
}

/// Also for an agent whose file has gone or was damaged: what it started must not stay behind.
std::string labelToRemove(const std::string& agentPath) {
  const auto agent = readLaunchAgent(agentPath);
  return agent ? agent->label : labelOfFileName(agentPath);
}

ServiceOutcome bootout(const std::string& agentPath, const std::string& folder) {
  const auto removed = removeLoginItem(folder, labelToRemove(agentPath));
  if (!removed) return {kInputOutputError, "Boot-out failed: 5: " + removed.errorText()};
  if (!*removed) return {kNoSuchProcess, "Boot-out failed: 3: No such process"};
  return {};
}

ServiceOutcome unload(const std::string& agentPath, const std::string& folder) {
  const auto removed = removeLoginItem(folder, labelToRemove(agentPath));
  if (!removed) return {kInputOutputError, "Unload failed: 5: " + removed.errorText()};
  return {};
}

}  // namespace

std::optional<ServiceCommand> parseServiceCommand(const std::vector<std::string>& arguments) {
  if (arguments.empty() || arguments.back().empty()) return std::nullopt;
  const auto& verb = arguments.front();
  if (arguments.size() == 2) {
    if (verb == "load") return ServiceCommand{ServiceVerb::load, {}, arguments[1]};
    if (verb == "unload") return ServiceCommand{ServiceVerb::unload, {}, arguments[1]};
  }
  if (arguments.size() == 3) {
    const auto user = userOfDomain(arguments[1]);
    if (!user) return std::nullopt;
    if (verb == "bootstrap") return ServiceCommand{ServiceVerb::bootstrap, *user, arguments[2]};
    if (verb == "bootout") return ServiceCommand{ServiceVerb::bootout, *user, arguments[2]};
  }
  return std::nullopt;
}

ServiceOutcome runServiceCommand(const ServiceCommand& command, const std::string& userIdentifier,
                                 const std::string& autostartFolder) {
  if (!command.userIdentifier.empty() && command.userIdentifier != userIdentifier) {
    return {kNotPermitted, "Not permitted for user " + command.userIdentifier};
  }
  switch (command.verb) {
    case ServiceVerb::bootstrap:
      return bootstrap(command.agentPath, autostartFolder);
    case ServiceVerb::bootout:
      return bootout(command.agentPath, autostartFolder);
    case ServiceVerb::load:
      return load(command.agentPath, autostartFolder);
    case ServiceVerb::unload:
      return unload(command.agentPath, autostartFolder);
  }
  return {};
}

}  // namespace quillmont
