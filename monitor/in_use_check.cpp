// Who holds files open on an image.

#include "monitor/QuillmontDaemon.h"
#include "monitor/open_files.h"
#include "platform/Log.h"
#include "platform/ProcessLauncher.h"

namespace quillmont {

InUse QuillmontDaemon::checkInUse(const std::string& mountPoint, const std::string& myPid) {
  auto tool = host_.processes.launch({.path = host_.tools.openFilesTool,
                                      .arguments = {"-F", "cpn", mountPoint},
                                      .standardOutput = ChildOutput::pipe,
                                      .standardError = ChildOutput::pipe});
  if (!tool) {
    host_.log.write("Error checking mount point use: " + tool.errorText());
    return {false, {}};
  }
  // The tool's exit status says "failed" also when nothing is open: only its output counts.
  (*tool)->waitUntilExit();
  auto names = countedProcessNames((*tool)->readStandardOutput(), myPid, ignoredPrefixes_);
  const bool inUse = !names.empty();
  return {inUse, std::move(names)};
}

}  // namespace quillmont
