// The program as it is installed.
#pragma once

#include <optional>
#include <string>

namespace quillmont {

/// The main bundle. Any thread; the answers are those of the program's start and never change.
class Bundle {
 public:
  virtual ~Bundle() = default;
  virtual std::optional<std::string> identifier() const = 0;
  virtual std::string path() const = 0;
  virtual std::optional<std::string> executablePath() const = 0;
};

}  // namespace quillmont
