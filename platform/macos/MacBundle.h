// The application bundle.
#pragma once

#include <optional>
#include <string>

#include "platform/Bundle.h"

namespace quillmont {

/// The main bundle as it was when this was made. A program that runs outside of a bundle has no
/// identifier, and the folder that holds it for a path.
class MacBundle : public Bundle {
 public:
  MacBundle();

  std::optional<std::string> identifier() const override { return identifier_; }
  std::string path() const override { return path_; }
  std::optional<std::string> executablePath() const override { return executablePath_; }

 private:
  std::optional<std::string> identifier_;
  std::string path_;
  std::optional<std::string> executablePath_;
};

}  // namespace quillmont
