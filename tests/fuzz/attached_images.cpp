// The list of attached images, from the bytes that the disk-image tool prints.

#include "monitor/attached_images.h"

#include <set>
#include <string>
#include <utility>

#include "platform/linux/XmlPropertyLists.h"
#include "platform/utf8.h"
#include "tests/fuzz/fuzzing.h"

namespace quillmont::testing {
namespace {

bool describes(const PropertyList& image, const ScanEntry& entry) {
  const auto* path = image.find("image-path");
  const auto* entities = image.find("system-entities");
  if (!path || *path != entry.imagePath || !entities || !entities->array()) return false;
  const auto& list = *entities->array();
  return std::any_of(list.begin(), list.end(), [&](const PropertyList& entity) {
    const auto* place = entity.find("mount-point");
    const auto* node = entity.find("dev-entry");
    return place && *place == entry.mountPoint && node && *node == entry.devEntry;
  });
}

void checkEntries(const PropertyListArray& images, const std::vector<ScanEntry>& entries) {
  std::set<std::string> paths;
  for (const auto& entry : entries) {
    require(paths.insert(entry.imagePath).second, "an image is listed once");
    require(entry.mountPoint.starts_with("/Volumes/"), "a volume is below /Volumes/");
    require(isValidUtf8(entry.imagePath + entry.mountPoint + entry.devEntry), "texts are UTF-8");
    require(std::any_of(images.begin(), images.end(),
                        [&](const auto& image) { return describes(image, entry); }),
            "an entry is one of the tool's");
  }
}

/// What comes behind an image in the tool's list does not change what is made of it.
void checkPrefix(PropertyListArray images, const std::vector<ScanEntry>& entries) {
  images.pop_back();
  const auto fewer = readAttachedImages(PropertyListDictionary{{"images", std::move(images)}});
  require(fewer.size() <= entries.size() && entries.size() <= fewer.size() + 1 &&
              std::equal(fewer.begin(), fewer.end(), entries.begin()),
          "an image more is at most an entry more, at the end");
}

}  // namespace

void tryInput(std::string_view input) {
  const auto list = XmlPropertyLists().parse(input);
  if (!list) return;
  const auto entries = readAttachedImages(*list);
  const auto* value = list->find("images");
  const auto* images = value ? value->array() : nullptr;
  if (!images) return require(entries.empty(), "no list of images, no image");
  checkEntries(*images, entries);
  const bool pure = std::all_of(images->begin(), images->end(),
                                [](const PropertyList& image) { return image.dictionary(); });
  if (!pure) return require(entries.empty(), "a list of other things holds no image");
  if (!images->empty()) checkPrefix(*images, entries);
}

}  // namespace quillmont::testing
