#include "platform/posix/PosixFileManager.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <optional>
#include <utility>

#include "platform/posix/Descriptor.h"
#include "platform/posix/errors.h"
#include "platform/posix/files.h"

namespace quillmont {
namespace {

/// The field has one name in POSIX and another on macOS.
template <class Status>
timespec modificationTime(const Status& status) {
  if constexpr (requires { status.st_mtim; }) {
    return status.st_mtim;
  } else {
    return status.st_mtimespec;
  }
}

/// POSIX has none; macOS and the BSDs do.
template <class Status>
std::optional<timespec> creationTime(const Status& status) {
  if constexpr (requires { status.st_birthtimespec; }) {
    return status.st_birthtimespec;
  } else {
    return std::nullopt;
  }
}

TimePoint timePoint(const timespec& time) {
  const auto sinceEpoch =
      std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
  return TimePoint(std::chrono::duration_cast<TimePoint::duration>(sinceEpoch));
}

}  // namespace

PosixFileManager::PosixFileManager(std::vector<std::string> libraryFolders)
    : libraryFolders_(std::move(libraryFolders)) {}

Result<FileAttributes> PosixFileManager::attributes(const std::string& path) const {
  struct stat status;
  if (stat(path.c_str(), &status) != 0) return Error{errorText(errno)};
  FileAttributes result{timePoint(modificationTime(status)), std::nullopt};
  if (const auto created = creationTime(status)) result.creationDate = timePoint(*created);
  return result;
}

bool PosixFileManager::exists(const std::string& path) const {
  struct stat status;
  if (stat(path.c_str(), &status) == 0) return true;
  // A file server that is away for a moment, or rights that changed, delete nothing.
  const int error = errno;
  return error != ENOENT && error != ENOTDIR && error != ELOOP && error != ENAMETOOLONG;
}

std::vector<std::string> PosixFileManager::userLibraryFolders() const {
  return libraryFolders_;
}

Result<void> PosixFileManager::createDirectory(const std::string& path) {
  return createFolders(path, 0755);
}

Result<void> PosixFileManager::writeFile(const std::string& path, std::string_view bytes) {
  // Non-blocking, so that a pipe without a reader is an error and not a wait.
  Descriptor fd(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NONBLOCK, 0644));
  if (!fd) return Error{errorText(errno)};
  if (auto written = writeAll(fd.get(), bytes); !written) return written;
  // Network file systems tell a full disk only here.
  if (close(fd.release()) != 0) return Error{errorText(errno)};
  return {};
}

Result<void> PosixFileManager::remove(const std::string& path) {
  if (std::remove(path.c_str()) != 0) return Error{errorText(errno)};
  return {};
}

}  // namespace quillmont
