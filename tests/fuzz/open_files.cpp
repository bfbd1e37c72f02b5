// The open-files tool's output: the program's own process identifier, a line feed, what was
// printed.

#include "monitor/open_files.h"

#include <set>

#include "platform/utf8.h"
#include "tests/fuzz/fuzzing.h"

namespace quillmont::testing {
namespace {

bool isIgnored(std::string name) {
  for (char& c : name) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  const auto prefixes = ignoredServicePrefixes();
  return std::any_of(prefixes.begin(), prefixes.end(),
                     [&](const auto& prefix) { return name.starts_with(prefix); });
}

void checkNames(std::string_view output, const std::vector<std::string>& names) {
  std::set<std::string> once;
  for (const auto& name : names) {
    require(once.insert(name).second, "a process is named once");
    require(isValidUtf8(name), "a name is UTF-8");
    require(name.find_first_of("\n\v\f\r") == name.npos, "a name is of one line");
    require(output.find("c" + name) != output.npos, "a name is in the output");
    require(name != "lsof" && !isIgnored(name), "tools and services are no users");
  }
}

}  // namespace

void tryInput(std::string_view input) {
  const auto myPid = takePart(input, '\n');
  const auto prefixes = ignoredServicePrefixes();
  const auto names = countedProcessNames(input, myPid, prefixes);
  checkNames(input, names);
  require(isValidUtf8(input) || names.empty(), "what is no text names nobody");
  if (!isValidUtf8(input)) return;
  // Output that was cut at the end of a line.
  const auto start = input.substr(0, input.rfind('\n') == input.npos ? 0 : input.rfind('\n'));
  const auto fewer = countedProcessNames(start, myPid, prefixes);
  require(fewer.size() <= names.size() && std::equal(fewer.begin(), fewer.end(), names.begin()),
          "later lines do not change what was counted");
}

}  // namespace quillmont::testing
