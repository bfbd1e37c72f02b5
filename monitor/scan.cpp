// Which images are attached, and since when.

#include "monitor/QuillmontDaemon.h"
#include "platform/FileManager.h"
#include "platform/Log.h"
#include "platform/ProcessLauncher.h"
#include "platform/PropertyList.h"

namespace quillmont {

std::vector<ScanEntry> QuillmontDaemon::scanMountedImages() {
  const auto failed = [&](const std::string& error) {
    host_.log.write("Error scanning mounted images: " + error);
    return std::vector<ScanEntry>();
  };
  auto tool = host_.processes.launch({.path = host_.tools.diskImageTool,
                                      .arguments = {"info", "-plist"},
                                      .standardOutput = ChildOutput::pipe});
  if (!tool) return failed(tool.errorText());
  // An answer counts whatever the exit status.
  (*tool)->waitUntilExit();
  const auto output = (*tool)->readStandardOutput();
  if (output.empty()) return {};
  const auto list = host_.propertyLists.parse(output);
  return list ? readAttachedImages(*list) : failed(list.errorText());
}

TimePoint QuillmontDaemon::getMountTime(const std::string& devEntry) {
  const auto attributes = host_.files.attributes(devEntry);
  if (!attributes) {
    host_.log.write("Error getting creation date for devEntry " + devEntry + ": " +
                    attributes.errorText());
    return host_.clock.now();
  }
  // The node is made when the image is attached, and its modification date is the better witness.
  if (attributes->modificationDate) return *attributes->modificationDate;
  if (attributes->creationDate) return *attributes->creationDate;
  return host_.clock.now();
}

}  // namespace quillmont
