// The program's place in the file system.
#pragma once

#include <string>

#include "platform/Bundle.h"

namespace quillmont {

/// The bundle is the folder above Contents/MacOS/<program> where the program is installed like
/// that, else the program's own folder.
class LinuxBundle : public Bundle {
 public:
  /// `executable` as /proc/self/exe tells it; empty if it could not be told. The bundle's path is
  /// then "/": a folder that exists, as a missing bundle means a deleted program.
  explicit LinuxBundle(std::string executable);

  /// The target of /proc/self/exe as it is now; empty where there is no /proc.
  static std::string executableLink();

  std::optional<std::string> identifier() const override;
  std::string path() const override { return path_; }
  std::optional<std::string> executablePath() const override;

 private:
  std::string executable_;
  std::string path_;
};

}  // namespace quillmont
