#include "platform/linux/tools/launchctl/login_items.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>

#include "platform/linux/tools/launchctl/desktop_entry.h"
#include "platform/posix/errors.h"
#include "platform/posix/files.h"

namespace quillmont {
namespace {

std::string entryPath(const std::string& folder, const std::string& label) {
  return folder + "/" + label + ".desktop";
}

bool isRegularFile(const std::string& path) {
  struct stat status = {};
  return lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

}  // namespace

bool loginItemExists(const std::string& folder, const std::string& label) {
  struct stat status = {};
  return lstat(entryPath(folder, label).c_str(), &status) == 0;
}

Result<void> putLoginItem(const std::string& folder, const LaunchAgent& agent,
                          const std::string& agentPath) {
  if (!agent.runAtLoad) {
    const auto removed = removeLoginItem(folder, agent.label);
    if (!removed) return Error{removed.errorText()};
    return {};
  }
  auto created = createFolders(folder, 0700);
  if (!created) return created;
  return replaceFile(entryPath(folder, agent.label), autostartEntry(agent, agentPath));
}

Result<bool> removeLoginItem(const std::string& folder, const std::string& label) {
  constexpr std::size_t kLimit = 1u << 20;
  const auto path = entryPath(folder, label);
  if (!isRegularFile(path)) return false;
  const auto entry = readFile(path, kLimit);
  if (!entry) return Error{entry.errorText()};
  if (!isMadeFromLaunchAgent(*entry)) return false;
  if (unlink(path.c_str()) != 0) return systemError("cannot remove " + path, errno);
  return true;
}

}  // namespace quillmont
