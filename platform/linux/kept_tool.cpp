#include "platform/linux/kept_tool.h"

#include <fcntl.h>
#include <stdio.h>
#include <unistd.h>

#include "platform/FileManager.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/files.h"

namespace quillmont {

void keepTool(const std::string& tool, const std::string& folder) {
  const auto link = folder + "/" + lastPathComponent(tool);
  const auto fresh = link + ".new";
  Descriptor file(open(tool.c_str(), O_RDONLY | O_CLOEXEC));
  // /proc/self would be the shell that looks the tool up, not this process.
  const auto target = "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(file.get());
  unlink(fresh.c_str());
  if (file && createFolders(folder, 0700) && symlink(target.c_str(), fresh.c_str()) == 0 &&
      rename(fresh.c_str(), link.c_str()) == 0) {
    file.release();
  } else {
    unlink(fresh.c_str());
    unlink(link.c_str());
  }
}

}  // namespace quillmont
