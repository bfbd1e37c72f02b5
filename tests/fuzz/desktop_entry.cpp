// Login items: command lines whose arguments are divided by NULs, and texts of entries.

#include "platform/linux/tools/launchctl/desktop_entry.h"

#include <string>
#include <vector>

#include "tests/fuzz/fuzzing.h"

namespace quillmont::testing {
namespace {

/// What a desktop makes of the value of a key of type string.
std::string unescaped(std::string_view value) {
  std::string text;
  while (!value.empty()) {
    const char first = value.front();
    value.remove_prefix(1);
    if (first != '\\') {
      text += first;
      continue;
    }
    require(!value.empty(), "an escape has a code");
    const auto at = std::string_view("sntr\\").find(value.front());
    require(at != std::string_view::npos, "a code is one of the five");
    text += " \n\t\r\\"[at];
    value.remove_prefix(1);
  }
  return text;
}

/// Reads one argument off a command line.
std::string takeArgument(std::string_view& line) {
  std::string argument;
  const bool quoted = line.starts_with('"');
  if (quoted) line.remove_prefix(1);
  for (const std::string_view end = quoted ? "\"" : " "; !line.empty() && !line.starts_with(end);) {
    if (quoted && line.front() == '\\') line.remove_prefix(1);
    require(!line.empty(), "a backslash stands before something");
    if (line.front() == '%') line.remove_prefix(1);
    require(!line.empty() && (line.front() != '%' || line.data()[-1] == '%'), "no field codes");
    argument += line.front();
    line.remove_prefix(1);
  }
  if (quoted) {
    require(line.starts_with('"'), "a quote has an end");
    line.remove_prefix(1);
  }
  return argument;
}

void checkCommandLine(const std::vector<std::string>& arguments) {
  const auto value = execValue(arguments);
  require(value.find_first_of("\n\r") == value.npos, "a command line is of one line");
  require(!value.starts_with(' '), "a value begins with no space");
  const auto text = unescaped(value);
  std::string_view line = text;
  for (const auto& argument : arguments) {
    require(takeArgument(line) == argument, "a desktop starts what was asked for");
    if (&argument == &arguments.back()) break;
    require(line.starts_with(' '), "a space divides arguments");
    line.remove_prefix(1);
  }
  require(line.empty(), "a desktop starts nothing more");
}

}  // namespace

void tryInput(std::string_view input) {
  const std::string made = "[Desktop Entry]\nX-Quillmont-LaunchAgent=";
  require(!isMadeFromLaunchAgent(input) || input.find(made.substr(made.find('X'))) != input.npos,
          "what is ours has our key");
  require(isMadeFromLaunchAgent(std::string(input) + "\n" + made), "our key is found anywhere");
  const auto value = entryValue(input);
  require(unescaped(value) == input, "a value is read as it was written");

  std::vector<std::string> arguments;
  while (!input.empty()) arguments.emplace_back(takePart(input));
  if (!arguments.empty()) checkCommandLine(arguments);
}

}  // namespace quillmont::testing
