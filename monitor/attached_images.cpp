#include "monitor/attached_images.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <unordered_set>

#include "platform/PropertyList.h"

namespace quillmont {
namespace {

constexpr std::string_view kVolumes = "/Volumes/";

/// The array under `key` if it is one and holds dictionaries alone.
const PropertyListArray* dictionaries(const PropertyList& list, std::string_view key) {
  const auto* value = list.find(key);
  const auto* array = value ? value->array() : nullptr;
  if (!array) return nullptr;
  const bool pure = std::all_of(array->begin(), array->end(),
                                [](const PropertyList& element) { return element.dictionary(); });
  return pure ? array : nullptr;
}

const std::string* text(const PropertyList& list, std::string_view key) {
  const auto* value = list.find(key);
  return value ? value->string() : nullptr;
}

/// The first volume of the image that the user sees below /Volumes/.
std::optional<ScanEntry> firstVolume(const std::string& imagePath,
                                     const PropertyListArray& entities) {
  for (const auto& entity : entities) {
    const auto* mountPoint = text(entity, "mount-point");
    const auto* devEntry = text(entity, "dev-entry");
    if (mountPoint && devEntry && mountPoint->starts_with(kVolumes)) {
      return ScanEntry{imagePath, *mountPoint, *devEntry};
    }
  }
  return std::nullopt;
}

}  // namespace

std::vector<ScanEntry> readAttachedImages(const PropertyList& list) {
  const auto* images = dictionaries(list, "images");
  if (!images) return {};
  std::vector<ScanEntry> entries;
  std::unordered_set<std::string_view> reported;
  for (const auto& image : *images) {
    const auto* imagePath = text(image, "image-path");
    const auto* entities = dictionaries(image, "system-entities");
    if (!imagePath || !entities || reported.contains(*imagePath)) continue;
    if (auto entry = firstVolume(*imagePath, *entities)) {
      entries.push_back(std::move(*entry));
      reported.insert(*imagePath);
    }
  }
  return entries;
}

}  // namespace quillmont
