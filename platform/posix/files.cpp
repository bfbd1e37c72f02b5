#include "platform/posix/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/posix/Descriptor.h"
#include "platform/posix/errors.h"

namespace quillmont {
namespace {

bool isFolder(const std::string& path) {
  struct stat status;
  return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

std::string parentFolder(const std::string& path) {
  const auto slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

/// Writes `bytes` to the new file `fd`, all the way to the disk, and closes it.
Result<void> fill(Descriptor fd, std::string_view bytes) {
  if (auto written = writeAll(fd.get(), bytes); !written) return written;
  if (fsync(fd.get()) != 0 || close(fd.release()) != 0) return Error{errorText(errno)};
  return {};
}

}  // namespace

void leaveStartFolder() {
  static_cast<void>(chdir("/") == 0);
}

Result<std::string> readFile(const std::string& path, std::size_t limit) {
  // Non-blocking, so that a pipe lying where a file is expected cannot hold the program up.
  const Descriptor fd(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!fd) return systemError("cannot open " + path, errno);
  std::string bytes;
  char buffer[16384];
  for (;;) {
    const auto count = read(fd.get(), buffer, sizeof buffer);
    if (count == 0) return bytes;
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return systemError("cannot read " + path, errno);
    if (static_cast<std::size_t>(count) > limit - bytes.size()) {
      return systemError("cannot read " + path, EFBIG);
    }
    bytes.append(buffer, static_cast<std::size_t>(count));
  }
}

Result<void> writeAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const auto count = write(fd, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return Error{errorText(errno)};
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return {};
}

Result<void> createFolders(const std::string& path, unsigned mode) {
  if (isFolder(path)) return {};
  std::size_t end = 0;
  do {
    end = std::min(path.find('/', end + 1), path.size());
    const auto folder = path.substr(0, end);
    // What matters is that the folder is there: on a read-only system, say, mkdir() may have
    // another reason than EEXIST to fail for one that is.
    if (mkdir(folder.c_str(), static_cast<mode_t>(mode)) != 0) {
      const int reason = errno;
      if (!isFolder(folder)) return systemError("cannot create " + folder, reason);
    }
  } while (end < path.size());
  return {};
}

Result<void> replaceFile(const std::string& path, std::string_view bytes) {
  const Descriptor folder(open(parentFolder(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!folder) return systemError("cannot open the folder of " + path, errno);
  // A fixed name: what a crash leaves behind is swept up by the next write.
  const auto temporary = path + ".new";
  unlink(temporary.c_str());
  Descriptor fd(
      open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
  if (!fd) return systemError("cannot create " + temporary, errno);
  if (const auto filled = fill(std::move(fd), bytes); !filled) {
    unlink(temporary.c_str());
    return Error{"cannot write " + temporary + ": " + filled.errorText()};
  }
  if (rename(temporary.c_str(), path.c_str()) != 0) {
    const int reason = errno;
    unlink(temporary.c_str());
    return systemError("cannot replace " + path, reason);
  }
  // Some file systems cannot flush a folder; there, nothing better is to be had.
  if (fsync(folder.get()) != 0 && errno != EINVAL && errno != ENOTSUP) {
    return systemError("cannot flush the folder of " + path, errno);
  }
  return {};
}

}  // namespace quillmont
