// Scripts with the command lines of a Mac's tools, over images that are files in a folder.
#pragma once

#include <string>

#include "platform/ToolPaths.h"
#include "tests/support/Program.h"

namespace quillmont::testing {

/// An image is mounted at /Volumes/<name> while it is attached.
class PlayedTools {
 public:
  PlayedTools();

  ToolPaths paths() const;

  void attach(const std::string& name);
  bool isAttached(const std::string& name) const;

  /// `process` holds a file of the image open from now on.
  void use(const std::string& name, const std::string& process);

  /// One line a call: the tool's name and its arguments.
  std::string calls() const;

 private:
  void install(const std::string& tool, const std::string& body);
  std::string tool(const std::string& name) const { return folder_.path() + "/" + name; }

  TemporaryFolder folder_;
};

}  // namespace quillmont::testing
