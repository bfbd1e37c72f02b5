#include "platform/linux/user_folders.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <optional>
#include <vector>

#include "platform/posix/errors.h"
#include "platform/posix/files.h"

namespace quillmont {
namespace {

constexpr char kRuntimeFolderName[] = "/com.norwaldex.Quillmont";

struct User {
  std::string name;
  std::string home;
};

/// The real user's entry in the user database, if there is one.
std::optional<User> databaseUser() {
  std::vector<char> buffer(1024);
  passwd entry;
  passwd* found = nullptr;
  while (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) == ERANGE) {
    buffer.resize(buffer.size() * 2);
  }
  if (!found) return std::nullopt;
  return User{entry.pw_name, entry.pw_dir};
}

/// The value of a variable that holds an absolute path, else an empty text.
std::string absolutePath(const char* variable) {
  const char* value = std::getenv(variable);
  return value && value[0] == '/' ? value : "";
}

bool isOwnFolder(const std::string& path) {
  struct stat status;
  return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == getuid();
}

/// Where the runtime folder goes. A root shell often carries the variables of the user it was
/// started by, whose folders are not for it.
Result<std::string> runtimeBase() {
  auto base = absolutePath("XDG_RUNTIME_DIR");
  if (!base.empty() && isOwnFolder(base)) return base;
  base = "/run/user/" + std::to_string(getuid());
  if (isOwnFolder(base)) return base;
  base = homeFolder() + "/.cache";
  if (const auto made = createFolders(base, 0700); !made) return Error{made.errorText()};
  return base;
}

}  // namespace

std::string homeFolder() {
  auto home = absolutePath("HOME");
  if (!home.empty()) return home;
  const auto user = databaseUser();
  return user && user->home.starts_with('/') ? user->home : "/";
}

std::string configFolder() {
  const auto folder = absolutePath("XDG_CONFIG_HOME");
  return folder.empty() ? homeFolder() + "/.config" : folder;
}

std::string dataFolder() {
  const auto folder = absolutePath("XDG_DATA_HOME");
  return folder.empty() ? homeFolder() + "/.local/share" : folder;
}

std::string userName() {
  const auto user = databaseUser();
  return user ? user->name : std::to_string(getuid());
}

Result<std::string> runtimeFolder() {
  auto base = runtimeBase();
  if (!base) return base;
  const auto folder = *base + kRuntimeFolderName;
  if (mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) {
    return systemError("cannot create " + folder, errno);
  }
  // Whoever could put a link or a folder of their own here would see, or steer, what the program
  // keeps.
  struct stat status;
  if (lstat(folder.c_str(), &status) != 0) return systemError("cannot use " + folder, errno);
  if (!S_ISDIR(status.st_mode)) return systemError("cannot use " + folder, ENOTDIR);
  if (status.st_uid != getuid()) return Error{folder + " belongs to somebody else"};
  if ((status.st_mode & 077) != 0) return Error{folder + " is open to others"};
  return folder;
}

}  // namespace quillmont
