// Where the system's tools are. The defaults are the Mac's; a host without them names its own
// programs of the same command lines.
#pragma once

#include <string>

namespace quillmont {

struct ToolPaths {
  std::string diskImageTool = "/usr/bin/hdiutil";
  std::string openFilesTool = "/usr/sbin/lsof";
  std::string scriptRunner = "/usr/bin/osascript";
  std::string shell = "/bin/bash";
};

}  // namespace quillmont
