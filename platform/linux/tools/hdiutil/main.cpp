// The disk-image tool: `info [-plist]`, `attach <image>`, `detach <mount point> [-force]`, with the
// command lines and exit statuses of the Mac's.

#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/linux/XmlPropertyLists.h"
#include "platform/linux/tools/hdiutil/info.h"
#include "platform/linux/tools/hdiutil/report.h"
#include "platform/posix/errors.h"
#include "platform/posix/files.h"

namespace quillmont {
namespace {

int info(bool asPropertyList) {
  const auto table = ImageTable::read();
  if (!table) return reportFailure("info", table.errorText());
  if (!asPropertyList) {
    say(STDOUT_FILENO, infoText(*table));
    return 0;
  }
  const auto xml = XmlPropertyLists().xml(infoList(*table));
  if (!xml) return reportFailure("info", xml.errorText());
  return writeAll(STDOUT_FILENO, *xml) ? 0 : kFailure;
}

/// Attaching and detaching are a program of their own, beside this one: loading the libraries that
/// they need would take half the time of a list, and the list is asked for in every cycle.
int handOver(const std::string& verb, char** commandLine) {
  std::error_code failure;
  const auto self = std::filesystem::read_symlink("/proc/self/exe", failure);
  if (failure) return reportFailure(verb, "cannot find this program: " + failure.message());
  const auto control = self.parent_path() / "hdiutil-control";
  execv(control.c_str(), commandLine);
  return reportFailure(verb, systemError("cannot start " + control.string(), errno).text);
}

int run(const std::vector<std::string>& arguments, char** commandLine) {
  const std::string verb = arguments.empty() ? "" : arguments.front();
  const std::size_t count = arguments.size();
  if (verb == "info" && count == 1) return info(false);
  if (verb == "info" && count == 2 && arguments[1] == "-plist") return info(true);
  if (verb == "attach" || verb == "detach") return handOver(verb, commandLine);
  return reportUsage();
}

}  // namespace
}  // namespace quillmont

int main(int count, char** arguments) {
  return quillmont::run(
      std::vector<std::string>(arguments + (count > 0 ? 1 : 0), arguments + count), arguments);
}
