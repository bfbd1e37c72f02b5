// The file system through POSIX calls.
#pragma once

#include <string>
#include <vector>

#include "platform/FileManager.h"

namespace quillmont {

/// Stateless but for the library folders it was given; any thread. Creation dates are left empty
/// where the system tells none.
class PosixFileManager : public FileManager {
 public:
  explicit PosixFileManager(std::vector<std::string> libraryFolders);

  Result<FileAttributes> attributes(const std::string& path) const override;
  bool exists(const std::string& path) const override;
  std::vector<std::string> userLibraryFolders() const override;

  /// Folders are made with mode 0755, less the umask.
  Result<void> createDirectory(const std::string& path) override;

  /// A new file gets mode 0644, less the umask; an existing one keeps its own.
  Result<void> writeFile(const std::string& path, std::string_view bytes) override;

  /// Removes a file, a symbolic link itself, or an empty folder.
  Result<void> remove(const std::string& path) override;

 private:
  const std::vector<std::string> libraryFolders_;
};

}  // namespace quillmont
