// The file system, as far as the program touches it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Clock.h"
#include "platform/Result.h"

namespace quillmont {

struct FileAttributes {
  std::optional<TimePoint> modificationDate;
  std::optional<TimePoint> creationDate;
};

/// Any thread. Paths are plain bytes of the file system, absolute, never expanded. Failures carry
/// the system's reason.
class FileManager {
 public:
  virtual ~FileManager() = default;

  virtual Result<FileAttributes> attributes(const std::string& path) const = 0;

  /// Whether an item exists at `path`; symbolic links are followed. What cannot be
  /// looked at, as on a file server that is away for a moment, counts as there.
  virtual bool exists(const std::string& path) const = 0;

  /// The user's library folders, the first one being the one to use.
  virtual std::vector<std::string> userLibraryFolders() const = 0;

  /// Creates a folder and the missing ones above it; one that exists already is a success.
  virtual Result<void> createDirectory(const std::string& path) = 0;

  /// Replaces the contents of the file at `path`, not atomically.
  virtual Result<void> writeFile(const std::string& path, std::string_view bytes) = 0;

  virtual Result<void> remove(const std::string& path) = 0;
};

/// The last component of a file path: "Backup 2" for "/Volumes/Backup 2"; slashes at the end do
/// not count, and "/" is its own last component.
std::string lastPathComponent(std::string_view path);

}  // namespace quillmont
