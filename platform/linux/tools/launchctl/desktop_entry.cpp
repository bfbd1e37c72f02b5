#include "platform/linux/tools/launchctl/desktop_entry.h"

#include <algorithm>
#include <cstddef>

namespace quillmont {
namespace {

constexpr std::string_view kAgentKey = "X-Quillmont-LaunchAgent=";

/// One argument of a command line, quoted if it holds anything that a shell would look at, and with
/// its percent signs kept from being taken for field codes.
std::string quotedArgument(std::string_view argument) {
  constexpr std::string_view kReserved = " \t\n\r\"'\\><~|&;$*?#()`";
  const bool quotes = argument.empty() || argument.find_first_of(kReserved) != argument.npos;
  std::string result;
  if (quotes) result += '"';
  for (const char character : argument) {
    if (std::string_view("\"`$\\").find(character) != std::string_view::npos) result += '\\';
    if (character == '%') result += '%';
    result += character;
  }
  if (quotes) result += '"';
  return result;
}

}  // namespace

std::string entryValue(std::string_view text) {
  std::string value;
  for (const char character : text) {
    if (character == '\\') {
      value += "\\\\";
    } else if (character == '\n') {
      value += "\\n";
    } else if (character == '\t') {
      value += "\\t";
    } else if (character == '\r') {
      value += "\\r";
    } else if (character == ' ' && value.empty()) {
      value += "\\s";
    } else {
      value += character;
    }
  }
  return value;
}

std::string execValue(const std::vector<std::string>& arguments) {
  std::string line;
  for (const auto& argument : arguments) {
    if (!line.empty()) line += ' ';
    line += quotedArgument(argument);
  }
  return entryValue(line);
}

std::string autostartEntry(const LaunchAgent& agent, const std::string& agentPath) {
  std::string entry = "[Desktop Entry]\nType=Application\nName=Quillmont\n";
  entry += "Exec=" + execValue(agent.arguments) + '\n';
  entry += "TryExec=" + entryValue(agent.arguments.front()) + '\n';
  entry += "X-GNOME-Autostart-enabled=true\nNoDisplay=true\n";
  entry += std::string(kAgentKey) + entryValue(agentPath) + '\n';
  return entry;
}

bool isMadeFromLaunchAgent(std::string_view entry) {
  std::string_view group;
  while (!entry.empty()) {
    const auto line = entry.substr(0, entry.find('\n'));
    entry.remove_prefix(std::min(entry.size(), line.size() + 1));
    if (line.starts_with('[')) group = line;
    if (group == "[Desktop Entry]" && line.starts_with(kAgentKey)) return true;
  }
  return false;
}

}  // namespace quillmont
