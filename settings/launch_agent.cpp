// The per-user launch agent: a property list that the service manager reads at login.

#include "platform/Bundle.h"
#include "platform/FileManager.h"
#include "platform/Log.h"
#include "platform/ProcessLauncher.h"
#include "platform/PropertyList.h"
#include "platform/fatal.h"
#include "settings/ConfigManager.h"

namespace quillmont {
namespace {

constexpr char kAgentLabel[] = "com.norwaldex.quillmont";

std::string agentsFolder(const Host& host) {
  const auto libraries = host.files.userLibraryFolders();
  if (libraries.empty()) fatalError(host.log, "The user has no library folder");
  return libraries.front() + "/LaunchAgents";
}

std::string agentPathIn(const std::string& folder) {
  return folder + "/" + kAgentLabel + ".plist";
}

/// "launchctl <verb> gui/<user> <agent> || launchctl <older verb> <agent>", both silenced.
std::string serviceCommand(const Host& host, const std::string& verb, const std::string& legacyVerb,
                           const std::string& agentPath) {
  return "launchctl " + verb + " gui/" + std::to_string(host.userIdentifier) + " " + agentPath +
         " 2>/dev/null || launchctl " + legacyVerb + " " + agentPath + " 2>/dev/null";
}

/// Runs the line to its end. Whether the service manager obeyed is not looked at: the file, not
/// the service, is what the next login reads.
void runInShell(const Host& host, const std::string& commandLine) {
  const auto shell =
      host.processes.launch({.path = host.tools.shell, .arguments = {"-c", commandLine}});
  if (shell) (*shell)->waitUntilExit();
}

void loadAgent(const Host& host, const std::string& agentPath) {
  runInShell(host, serviceCommand(host, "bootstrap", "load", agentPath));
}

void unloadAgentAndDelete(const Host& host, const std::string& agentPath) {
  runInShell(host, serviceCommand(host, "bootout", "unload", agentPath));
  static_cast<void>(host.files.remove(agentPath));
}

/// Starts the program once at login, and leaves it alone when it quits.
PropertyList agentContents(const Bundle& bundle) {
  const auto executable =
      bundle.executablePath().value_or(bundle.path() + "/Contents/MacOS/Quillmont");
  return PropertyListDictionary{{"Label", kAgentLabel},
                                {"ProgramArguments", PropertyListArray{executable}},
                                {"RunAtLoad", true},
                                {"KeepAlive", false}};
}

Result<void> writeAgent(const Host& host, const std::string& agentPath) {
  const auto xml = host.propertyLists.xml(agentContents(host.bundle));
  if (!xml) return Error{xml.errorText()};
  return host.files.writeFile(agentPath, *xml);
}

}  // namespace

void ConfigManager::updateLaunchAgent() {
  const auto folder = agentsFolder(host_);
  const auto agentPath = agentPathIn(folder);
  if (!launchAtLogin()) {
    if (host_.files.exists(agentPath)) unloadAgentAndDelete(host_, agentPath);
    return;
  }
  // A folder that cannot be made shows up as a file that cannot be written.
  static_cast<void>(host_.files.createDirectory(folder));
  if (const auto written = writeAgent(host_, agentPath); !written) {
    host_.log.write("Failed to write/load LaunchAgent: " + written.errorText());
    return;
  }
  loadAgent(host_, agentPath);
}

void ConfigManager::cleanLaunchAgent(const Host& host) {
  unloadAgentAndDelete(host, agentPathIn(agentsFolder(host)));
}

void ConfigManager::deleteLaunchAgent(const Host& host) {
  static_cast<void>(host.files.remove(agentPathIn(agentsFolder(host))));
}

}  // namespace quillmont
