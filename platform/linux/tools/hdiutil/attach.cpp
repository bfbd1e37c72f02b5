#include "platform/linux/tools/hdiutil/attach.h"

#include <algorithm>

namespace quillmont {
namespace {

std::string placeOf(const std::vector<Ghost>& ghosts, const std::string& node) {
  const auto ghost = std::find_if(ghosts.begin(), ghosts.end(),
                                  [&node](const Ghost& other) { return other.deviceNode == node; });
  return ghost == ghosts.end() ? std::string() : ghost->mountPoint;
}

std::vector<std::string> takenBut(std::vector<std::string> taken, const std::string& place) {
  if (!place.empty()) std::erase(taken, place);
  return taken;
}

/// The volumes of `loopName` onto their places. A ghost keeps its record: who holds its old mount
/// does not hold the new one, which can be unmounted cleanly while the ghost lives on.
Result<Attachment> mountVolumes(const std::string& loopName, const ImageFile& image,
                                const ImageTable& table, ImageControl& control) {
  const auto volumes = probeImage(image.file.get());
  if (!volumes) return Error{volumes.errorText()};
  const auto ghosts = table.ghostsOf(loopName);
  auto taken = table.mountPoints();
  Attachment attachment;
  for (const auto& volume : *volumes) {
    const std::string node = "/dev/" + deviceName(loopName, volume.partition);
    const std::string before = placeOf(ghosts, node);
    const auto place = control.mount(loopName, volume, before, takenBut(taken, before));
    if (!place) {
      attachment.warnings.push_back(place.errorText());
      continue;
    }
    taken.push_back(*place);
    attachment.mounted.push_back({node, *place});
  }
  if (attachment.mounted.empty()) return Error{attachment.warnings.front()};
  return attachment;
}

Attachment asMounted(const AttachedImage& image, const std::vector<VolumeMount>& mounts) {
  Attachment attachment;
  for (const auto& entity : image.entities) {
    const bool mounted = std::any_of(mounts.begin(), mounts.end(), [&entity](const auto& volume) {
      return volume.mount.mountPoint == entity.mountPoint;
    });
    if (mounted) attachment.mounted.push_back(entity);
  }
  return attachment;
}

Result<Attachment> attachAnew(const ImageFile& image, const ImageTable& table,
                              ImageControl& control) {
  // What cannot be mounted need not be attached first.
  if (const auto volumes = probeImage(image.file.get()); !volumes) {
    return Error{volumes.errorText()};
  }
  const auto loopName = control.setUp(image);
  if (!loopName) return Error{loopName.errorText()};
  auto attachment = mountVolumes(*loopName, image, table, control);
  if (attachment) {
    control.releaseWithLastUnmount(*loopName);
    return attachment;
  }
  for (const auto& loop : attachedLoopDevices()) {
    if (loop.name == *loopName) control.release(loop);
  }
  return attachment;
}

}  // namespace

Result<Attachment> attachImage(const std::string& path, ImageControl& control) {
  const auto image = ImageFile::open(path);
  if (!image) return Error{image.errorText()};
  const AttachmentTurn turn(*image);
  const auto table = ImageTable::read();
  if (!table) return Error{table.errorText()};
  for (const auto& attached : table->images()) {
    if (!control.carries(attached.loop, *image)) continue;
    const auto mounts = table->mountsOf(attached.loop.name);
    auto before = asMounted(attached, mounts);
    if (!before.mounted.empty()) return before;
    if (!mounts.empty()) return Error{"attached already, and a part of it is mounted"};
    return mountVolumes(attached.loop.name, *image, *table, control);
  }
  return attachAnew(*image, *table, control);
}

}  // namespace quillmont
