#include "platform/linux/tools/hdiutil/attach.h"

#include <algorithm>

namespace quillmont {
namespace {

std::string placeOf(const std::vector<Ghost>& ghosts, const std::string& node) {
  const auto ghost = std::find_if(ghosts.begin(), ghosts.end(),
                                  [&node](const Ghost& other) { return other.deviceNode == node; });
  return ghost == ghosts.end() ? std::string() : ghost->mountPoint;
}

/// What the mount table does not tell to be taken: the places of all ghosts, but for the one that
/// is given back.
std::vector<std::string> ghostPlacesBut(const std::string& place, const ImageTable& table) {
  std::vector<std::string> places;
  for (const auto& ghost : table.ghosts()) {
    if (ghost.mountPoint != place) places.push_back(ghost.mountPoint);
  }
  return places;
}

/// The volumes of `loopName` onto their places. A ghost keeps its record: who holds its old mount
/// does not hold the new one, which can be unmounted cleanly while the ghost lives on.
Result<Attachment> mountVolumes(const std::string& loopName, const ImageFile& image,
                                const ImageTable& table, ImageControl& control) {
  const auto volumes = probeImage(image.file.get());
  if (!volumes) return Error{volumes.errorText()};
  const auto ghosts = table.ghostsOf(loopName);
  Attachment attachment;
  for (const auto& volume : *volumes) {
    const std::string node = "/dev/" + deviceName(loopName, volume.partition);
    const std::string before = placeOf(ghosts, node);
    const auto place = control.mount(loopName, volume, before, ghostPlacesBut(before, table));
    if (!place) {
      attachment.warnings.push_back(place.errorText());
      continue;
    }
    attachment.mounted.push_back({node, *place});
  }
  if (attachment.mounted.empty()) return Error{attachment.warnings.front()};
  return attachment;
}

/// `mounts` come with the latest first.
Attachment asMounted(const std::vector<VolumeMount>& mounts) {
  Attachment attachment;
  auto& found = attachment.mounted;
  for (auto volume = mounts.rbegin(); volume != mounts.rend(); ++volume) {
    const ImageEntity entity{volume->deviceNode, volume->mount.mountPoint};
    if (isVolume(volume->mount) && std::find(found.begin(), found.end(), entity) == found.end()) {
      found.push_back(entity);
    }
  }
  return attachment;
}

/// The volumes of an image that is attached already.
Result<Attachment> attachAgain(const std::string& loopName, const ImageFile& image,
                               const ImageTable& table, ImageControl& control) {
  const auto mounts = table.mountsOf(loopName);
  auto before = asMounted(mounts);
  if (!before.mounted.empty()) return before;
  if (!mounts.empty()) return Error{"attached already, and a part of it is mounted"};
  auto attachment = mountVolumes(loopName, image, table, control);
  if (attachment) control.releaseWithLastUnmount(loopName);
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
  const auto turn = AttachmentTurn::take(*image);
  if (!turn) return Error{turn.errorText()};
  const auto loopName = control.deviceOf(*image);
  if (!loopName) return Error{loopName.errorText()};
  const auto table = ImageTable::read();
  if (!table) return Error{table.errorText()};
  if (!loopName->empty()) return attachAgain(*loopName, *image, *table, control);
  return attachAnew(*image, *table, control);
}

}  // namespace quillmont
