#include "platform/linux/tools/hdiutil/info.h"

#include <algorithm>

#include "platform/linux/volume_paths.h"

namespace quillmont {
namespace {

/// A new file may be attached under the name of a deleted one that is attached still; two images of
/// one path would pass for one.
std::string listedPath(const LoopDevice& loop, const ImageTable& table) {
  const auto hasItsPath = [&loop](const AttachedImage& other) {
    return other.loop.name != loop.name && other.loop.backingFile == loop.backingFile;
  };
  const auto& images = table.images();
  const bool marked = loop.deleted && std::any_of(images.begin(), images.end(), hasItsPath);
  return presentable(marked ? loop.backingFile + " (deleted)" : loop.backingFile);
}

}  // namespace

PropertyList infoList(const ImageTable& table) {
  PropertyListArray images;
  for (const auto& image : table.images()) {
    PropertyListArray entities;
    for (const auto& entity : image.entities) {
      PropertyListDictionary described = {{"dev-entry", presentable(entity.deviceNode)}};
      if (!entity.mountPoint.empty()) {
        described.emplace_back("mount-point", table.presented(entity.mountPoint));
      }
      entities.emplace_back(std::move(described));
    }
    images.emplace_back(
        PropertyListDictionary{{"image-path", listedPath(image.loop, table)},
                               {"system-entities", PropertyList(std::move(entities))}});
  }
  return PropertyListDictionary{{"images", PropertyList(std::move(images))}};
}

std::string infoText(const ImageTable& table) {
  std::string text;
  for (const auto& image : table.images()) {
    text += "image-path: " + listedPath(image.loop, table) + "\n";
    for (const auto& entity : image.entities) {
      text += presentable(entity.deviceNode);
      if (!entity.mountPoint.empty()) text += "\t" + table.presented(entity.mountPoint);
      text += "\n";
    }
  }
  return text;
}

}  // namespace quillmont
