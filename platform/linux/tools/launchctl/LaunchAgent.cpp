#include "platform/linux/tools/launchctl/LaunchAgent.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstddef>
#include <string_view>

#include "platform/linux/XmlPropertyLists.h"
#include "platform/posix/errors.h"
#include "platform/posix/files.h"

namespace quillmont {
namespace {

bool isLabel(const std::string& text) {
  return !text.empty() && text.find('/') == text.npos && text.find('\0') == text.npos;
}

}  // namespace

Result<LaunchAgent> launchAgentOf(const PropertyList& list) {
  LaunchAgent agent;
  const auto* const label = list.find("Label");
  if (!label || !label->string() || !isLabel(*label->string())) return Error{"no usable Label"};
  agent.label = *label->string();
  const auto* const arguments = list.find("ProgramArguments");
  const auto texts = arguments ? arguments->stringArray() : std::nullopt;
  if (!texts || texts->empty() || texts->front().empty()) {
    return Error{"no usable ProgramArguments"};
  }
  agent.arguments = *texts;
  if (const auto* const runAtLoad = list.find("RunAtLoad")) {
    const auto* const value = runAtLoad->as<bool>();
    if (!value) return Error{"RunAtLoad is no boolean"};
    agent.runAtLoad = *value;
  }
  return agent;
}

Result<LaunchAgent> readLaunchAgent(const std::string& path) {
  constexpr std::size_t kLimit = 1u << 20;
  struct stat status = {};
  if (stat(path.c_str(), &status) != 0) return systemError(path, errno);
  if (!S_ISREG(status.st_mode)) return Error{path + ": not a regular file"};
  const auto bytes = readFile(path, kLimit);
  if (!bytes) return Error{bytes.errorText()};
  const auto list = XmlPropertyLists().parse(*bytes);
  if (!list) return Error{path + ": " + list.errorText()};
  return launchAgentOf(*list);
}

std::string labelOfFileName(const std::string& path) {
  constexpr std::string_view kExtension = ".plist";
  std::string_view name = path;
  name.remove_prefix(name.rfind('/') + 1);
  if (name.ends_with(kExtension)) name.remove_suffix(kExtension.size());
  return std::string(name);
}

}  // namespace quillmont
