#include "tests/support/TestHost.h"

#include <algorithm>

namespace quillmont::testing {

FakeDiskImages::FakeDiskImages(TestHost& host) : host_(host) {
  const ToolPaths paths;
  host.processes.tools[paths.diskImageTool] = [this](const Command& command) {
    return diskImageTool(command);
  };
  host.processes.tools[paths.openFilesTool] = [this](const Command& command) {
    return openFilesTool(command);
  };
  host.processes.tools[paths.scriptRunner] = [](const Command&) { return ToolRun{}; };
}

FakeDiskImages::Image& FakeDiskImages::attach(const std::string& name) {
  const auto node = "/dev/disk" + std::to_string(4 + nodes_++) + "s1";
  host_.files.nodes[node] = {.modificationDate = host_.clock.now(), .creationDate = std::nullopt};
  attached.push_back({"/Users/user/" + name + ".dmg", "/Volumes/" + name, node});
  return attached.back();
}

FakeDiskImages::Image& FakeDiskImages::image(const std::string& name) {
  return *std::find_if(attached.begin(), attached.end(), [&](const Image& candidate) {
    return candidate.mountPoint == "/Volumes/" + name;
  });
}

void FakeDiskImages::removeImage(const std::string& mountPoint) {
  std::erase_if(attached, [&](const Image& image) { return image.mountPoint == mountPoint; });
}

ToolRun FakeDiskImages::diskImageTool(const Command& command) {
  if (command.arguments.front() == "info") {
    ++scans;
    return {.output = *host_.propertyLists.xml(list())};
  }
  if (detachStatus == 0 && detachReally) removeImage(command.arguments.at(1));
  return {.output = "", .status = detachStatus};
}

ToolRun FakeDiskImages::openFilesTool(const Command& command) {
  std::string output;
  for (const auto& image : attached) {
    if (image.mountPoint != command.arguments.at(2)) continue;
    int pid = image.userPid;
    for (const auto& user : image.users) {
      output += "p" + std::to_string(pid++) + "\nc" + user + "\nf3\nn" + image.mountPoint + "/f\n";
    }
  }
  return {.output = output, .status = output.empty() ? 1 : 0};
}

PropertyList FakeDiskImages::list() const {
  PropertyListArray images;
  for (const auto& image : attached) {
    images.push_back(PropertyListDictionary{
        {"image-path", image.imagePath},
        {"system-entities",
         PropertyListArray{PropertyListDictionary{{"dev-entry", image.devEntry},
                                                  {"mount-point", image.mountPoint}}}}});
  }
  return PropertyListDictionary{{"images", images}};
}

}  // namespace quillmont::testing
