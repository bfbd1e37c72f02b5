#include "platform/linux/tools/hdiutil/info.h"

#include "platform/linux/volume_paths.h"

namespace quillmont {

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
        PropertyListDictionary{{"image-path", presentable(image.loop.backingFile)},
                               {"system-entities", PropertyList(std::move(entities))}});
  }
  return PropertyListDictionary{{"images", PropertyList(std::move(images))}};
}

std::string infoText(const ImageTable& table) {
  std::string text;
  for (const auto& image : table.images()) {
    text += "image-path: " + presentable(image.loop.backingFile) + "\n";
    for (const auto& entity : image.entities) {
      text += presentable(entity.deviceNode);
      if (!entity.mountPoint.empty()) text += "\t" + table.presented(entity.mountPoint);
      text += "\n";
    }
  }
  return text;
}

}  // namespace quillmont
