#include "platform/linux/tools/hdiutil/mount_folders.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <filesystem>
#include <string_view>

#include "platform/linux/user_folders.h"
#include "platform/posix/errors.h"

namespace quillmont {
namespace {

constexpr int kMostOfOneName = 1000;

bool isEmptyFolder(const std::string& path) {
  struct stat status = {};
  if (lstat(path.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) return false;
  std::error_code error;
  return std::filesystem::is_empty(path, error) && !error;
}

/// A folder that nobody but the superuser can change.
Result<void> makeSafeFolder(const std::string& path, mode_t mode) {
  if (mkdir(path.c_str(), mode) == 0) {
    chmod(path.c_str(), mode);  // whatever the umask
  } else if (errno != EEXIST) {
    return systemError("cannot create " + path, errno);
  }
  struct stat status = {};
  if (lstat(path.c_str(), &status) != 0) return systemError(path, errno);
  if (!S_ISDIR(status.st_mode) || status.st_uid != 0 || (status.st_mode & 022) != 0) {
    return Error{path + " is no safe place for volumes: others could replace what is in it"};
  }
  return {};
}

/// As much of `name` as `limit` bytes hold; whole characters where it is text.
std::string cut(const std::string& name, std::size_t limit) {
  if (name.size() <= limit) return name;
  std::size_t end = limit;
  while (end > 0 && limit - end < 3 && (name[end] & 0xC0) == 0x80) --end;
  return name.substr(0, end);
}

}  // namespace

std::string volumeFolderName(const ImageVolume& volume) {
  for (std::string name : {volume.label, volume.uuid}) {
    std::replace(name.begin(), name.end(), '/', '_');
    if (!name.empty() && name != "." && name != "..") return name;
  }
  return "disk";
}

Result<std::string> makeVolumeFolder(const std::string& parent, const std::string& name,
                                     const std::vector<std::string>& taken) {
  for (int number = 0; number < kMostOfOneName; ++number) {
    const std::string suffix = number ? std::to_string(number) : "";
    const std::string path = parent + "/" + cut(name, NAME_MAX - suffix.size()) + suffix;
    if (std::find(taken.begin(), taken.end(), path) != taken.end()) continue;
    if (mkdir(path.c_str(), 0700) == 0) return path;
    if (errno != EEXIST) return systemError("cannot create " + path, errno);
    if (isEmptyFolder(path)) return path;
  }
  return Error{"too many volumes named " + name + " in " + parent};
}

Result<std::string> userMediaFolder(const std::string& media) {
  const std::string path = media + "/" + userName();
  if (auto made = makeSafeFolder(media, 0755); !made) return Error{made.errorText()};
  if (auto made = makeSafeFolder(path, 0700); !made) return Error{made.errorText()};
  return path;
}

void removeVolumeFolder(const std::string& mountPoint) {
  for (const std::string_view root : {"/media/", "/run/media/"}) {
    if (!mountPoint.starts_with(root)) continue;
    const auto slash = mountPoint.find('/', root.size());
    if (slash == std::string::npos || slash == root.size()) continue;
    if (slash + 1 == mountPoint.size() || mountPoint.find('/', slash + 1) != std::string::npos) {
      continue;
    }
    rmdir(mountPoint.c_str());
  }
}

}  // namespace quillmont
