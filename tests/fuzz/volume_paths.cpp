// Mount points of any bytes, divided by NULs, and the names under which the program knows them.

#include "platform/linux/volume_paths.h"

#include <string>
#include <vector>

#include "platform/linux/XmlPropertyLists.h"
#include "tests/fuzz/fuzzing.h"

namespace quillmont::testing {
namespace {

constexpr char kUser[] = "user";

void checkPresentable(std::string_view bytes) {
  const XmlPropertyLists lists;
  const auto text = presentable(bytes);
  require(text.size() <= 4 * bytes.size(), "a name grows within bounds");
  const auto xml = lists.xml(text);
  require(static_cast<bool>(xml), "any name goes into a property list");
  require(lists.parse(*xml).value() == PropertyList(text), "and comes out of it as it was");
  require(presentable(text) == text, "what can be carried is carried as it is");
}

void checkMountPoint(const std::string& mountPoint, const std::vector<std::string>& all) {
  const auto presented = presentedVolumePath(mountPoint, kUser, all);
  require(!presented.empty(), "a volume has a name");
  const auto found = volumeMountPoint(presented, kUser, all);
  require(std::find(all.begin(), all.end(), found) != all.end(), "a name leads to a volume");
  require(presentedVolumePath(found, kUser, all) == presented,
          "a name leads to a volume of that name");
  require(presentable(mountPoint) != mountPoint || found == mountPoint,
          "a name that needed no escapes leads to its own volume");
}

}  // namespace

void tryInput(std::string_view input) {
  checkPresentable(input);
  std::vector<std::string> all;
  while (!input.empty() && all.size() < 16) {
    if (const auto part = takePart(input); part.starts_with('/')) all.emplace_back(part);
  }
  for (const auto& mountPoint : all) checkMountPoint(mountPoint, all);
}

}  // namespace quillmont::testing
