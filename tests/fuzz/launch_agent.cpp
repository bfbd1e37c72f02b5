// The file of a launch agent, and the login item that is made of it.

#include <filesystem>
#include <fstream>
#include <string>

#include "platform/linux/tools/launchctl/LaunchAgent.h"
#include "platform/linux/tools/launchctl/desktop_entry.h"
#include "platform/linux/tools/launchctl/login_items.h"
#include "platform/linux/tools/launchctl/service_command.h"
#include "tests/fuzz/fuzzing.h"
#include "tests/support/Program.h"

namespace quillmont::testing {
namespace {

void checkAgent(const LaunchAgent& agent, const std::string& path) {
  require(!agent.label.empty() && agent.label.find('/') == agent.label.npos,
          "a label names a file in its folder");
  require(!agent.arguments.empty() && !agent.arguments.front().empty(), "an agent has a program");
  const auto entry = autostartEntry(agent, path);
  require(isMadeFromLaunchAgent(entry), "a login item is known as ours");
  require(std::count(entry.begin(), entry.end(), '\n') == 8, "no text of an agent begins a line");
}

ServiceOutcome ask(ServiceVerb verb, const std::string& agentPath, const std::string& folder) {
  return runServiceCommand({verb, "501", agentPath}, "501", folder);
}

/// All that the tool does with the agent, in the order of a user's switching on and off.
void checkLoginItem(const LaunchAgent& agent, const std::string& path, const std::string& folder) {
  if (agent.label.size() > 200) return;  // more than a file name holds
  require(ask(ServiceVerb::bootstrap, path, folder).status == 0, "an agent can be loaded");
  require(loginItemExists(folder, agent.label) == agent.runAtLoad,
          "what runs at login has an item");
  require(ask(ServiceVerb::bootstrap, path, folder).status == (agent.runAtLoad ? 5 : 0),
          "an agent is loaded once");
  require(ask(ServiceVerb::bootout, path, folder).status == (agent.runAtLoad ? 0 : 3),
          "an agent can be unloaded");
  require(!loginItemExists(folder, agent.label), "its item goes with it");
}

}  // namespace

void tryInput(std::string_view input) {
  static const TemporaryFolder home;
  const std::string path = home.path() + "/agent.plist";
  std::ofstream(path, std::ios::binary) << input;
  const auto agent = readLaunchAgent(path);
  if (!agent) {
    require(!agent.errorText().empty(), "a failure has a text");
    return require(ask(ServiceVerb::load, path, home.path() + "/autostart").status == 5,
                   "an agent that cannot be read is not loaded");
  }
  checkAgent(*agent, path);
  checkLoginItem(*agent, path, home.path() + "/autostart");
}

}  // namespace quillmont::testing
