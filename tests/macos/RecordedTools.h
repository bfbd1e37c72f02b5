// A Mac's tools as scripts that play what was recorded of them.
#pragma once

#include <string>
#include <vector>

#include "platform/ToolPaths.h"
#include "tests/support/Program.h"

namespace quillmont::testing {

/// The disk-image tool lists what it is told to, and forgets an image when it is detached; the
/// open-files tool finds a service on each volume, and users on "Backup 2".
class RecordedTools {
 public:
  using Call = std::vector<std::string>;  ///< the tool's name, then its arguments

  RecordedTools();

  ToolPaths paths() const;

  /// What the disk-image tool prints from now on, and what it prints once something was detached.
  void list(const std::string& before, const std::string& after);

  /// Every call so far whose tool has that name.
  std::vector<Call> calls(const std::string& tool) const;

  /// The bytes of a file in the folder of recordings.
  static std::string recorded(const std::string& name);

 private:
  void install(const std::string& tool, const std::string& body);
  std::string place(const std::string& name) const { return folder_.path() + "/" + name; }

  TemporaryFolder folder_;
};

}  // namespace quillmont::testing
