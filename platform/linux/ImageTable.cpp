#include "platform/linux/ImageTable.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "platform/linux/ghost_places.h"
#include "platform/linux/user_folders.h"
#include "platform/linux/volume_paths.h"

namespace quillmont {
namespace {

void place(std::vector<ImageEntity>& entities, const std::string& node, const std::string& where) {
  const auto isOfNode = [&node](const ImageEntity& entity) { return entity.deviceNode == node; };
  const auto first = std::find_if(entities.begin(), entities.end(), isOfNode);
  if (first != entities.end() && first->mountPoint.empty()) {
    first->mountPoint = where;
  } else if (std::find(first, entities.end(), ImageEntity{node, where}) == entities.end()) {
    const auto last = std::find_if(entities.rbegin(), entities.rend(), isOfNode).base();
    entities.insert(first == entities.end() ? entities.end() : last, {node, where});
  }
}

bool isBelow(const std::string& path, const std::string& folder) {
  return path.starts_with(folder == "/" ? folder : folder + "/");
}

std::string withoutTrailingSlashes(std::string path) {
  while (path.size() > 1 && path.ends_with('/')) path.pop_back();
  return path;
}

}  // namespace

Result<ImageTable> ImageTable::read() {
  auto mounts = readMountTable();
  if (!mounts) return Error{mounts.errorText()};
  auto loops = attachedLoopDevices();
  std::vector<std::string> partitions;
  for (const auto& loop : loops) {
    auto names = partitionNames(loop.name);
    std::move(names.begin(), names.end(), std::back_inserter(partitions));
  }
  auto volumes = imageMounts(*mounts);
  auto ghosts = livingGhosts();
  return ImageTable(loops, partitions, std::move(*mounts), std::move(volumes), std::move(ghosts),
                    userName());
}

ImageTable::ImageTable(const std::vector<LoopDevice>& loops,
                       const std::vector<std::string>& partitions, std::vector<Mount> mounts,
                       std::vector<VolumeMount> volumes, std::vector<Ghost> ghosts,
                       std::string user)
    : mounts_(std::move(mounts)),
      volumes_(std::move(volumes)),
      ghosts_(std::move(ghosts)),
      user_(std::move(user)) {
  nameGhostsApart(ghosts_, mounts_, volumes_);
  for (const auto& mount : mounts_) mountPoints_.push_back(mount.mountPoint);
  for (const auto& ghost : ghosts_) mountPoints_.push_back(ghost.mountPoint);
  for (const auto& loop : loops) images_.push_back(describe(loop, partitions));
}

AttachedImage ImageTable::describe(const LoopDevice& loop,
                                   const std::vector<std::string>& partitions) const {
  AttachedImage image{loop, {{"/dev/" + loop.name, ""}}};
  for (const auto& partition : partitions) {
    if (partition.starts_with(loop.name + "p")) image.entities.push_back({"/dev/" + partition, ""});
  }
  for (const auto& volume : volumes_) {
    if (volume.loopName == loop.name && isVolume(volume.mount)) {
      place(image.entities, volume.deviceNode, volume.mount.mountPoint);
    }
  }
  for (const auto& ghost : ghostsOf(loop.name)) {
    place(image.entities, ghost.deviceNode, ghost.mountPoint);
  }
  return image;
}

const AttachedImage* ImageTable::find(const std::string& place) const {
  const std::string wanted = withoutTrailingSlashes(place);
  const auto imageOf = [this](const std::string& loopName) {
    const auto found = std::find_if(images_.begin(), images_.end(),
                                    [&](const auto& image) { return image.loop.name == loopName; });
    return found == images_.end() ? nullptr : &*found;
  };
  const std::string mountPoint = volumeMountPoint(wanted, user_, mountPoints_);
  for (const auto& name : {mountPoint, wanted}) {
    // Of file systems mounted over one another the last one is what the path means.
    for (auto volume = volumes_.rbegin(); volume != volumes_.rend(); ++volume) {
      if (volume->mount.mountPoint == name) return imageOf(volume->loopName);
    }
    for (const auto& ghost : ghosts_) {
      if (ghost.mountPoint == name) return imageOf(ghost.loopName);
    }
  }
  for (const auto& image : images_) {
    for (const auto& entity : image.entities) {
      if (entity.deviceNode == wanted) return &image;
    }
  }
  return nullptr;
}

std::vector<VolumeMount> ImageTable::mountsOf(const std::string& loopName) const {
  std::vector<VolumeMount> found;
  std::copy_if(volumes_.rbegin(), volumes_.rend(), std::back_inserter(found),
               [&](const auto& volume) { return volume.loopName == loopName; });
  return found;
}

std::vector<Ghost> ImageTable::ghostsOf(const std::string& loopName) const {
  std::vector<Ghost> found;
  std::copy_if(ghosts_.begin(), ghosts_.end(), std::back_inserter(found),
               [&](const auto& ghost) { return ghost.loopName == loopName; });
  return found;
}

bool ImageTable::coversAnother(const Mount& mount) const {
  return std::any_of(mounts_.begin(), mounts_.end(), [&mount](const Mount& other) {
    return other.id == mount.parentId && other.mountPoint == mount.mountPoint;
  });
}

std::string ImageTable::mountInside(const std::vector<VolumeMount>& volumes) const {
  const auto isVolumeId = [&volumes](int id) {
    return std::any_of(volumes.begin(), volumes.end(),
                       [id](const auto& volume) { return volume.mount.id == id; });
  };
  for (const auto& mount : mounts_) {
    if (isVolumeId(mount.parentId) && !isVolumeId(mount.id)) return mount.mountPoint;
  }
  return {};
}

std::string ImageTable::imageInside(const std::vector<VolumeMount>& volumes) const {
  for (const auto& image : images_) {
    const std::string& path = image.loop.backingFile;
    for (const auto& volume : volumes) {
      if (volume.loopName != image.loop.name && isBelow(path, volume.mount.mountPoint)) return path;
    }
  }
  return {};
}

std::string ImageTable::presented(const std::string& mountPoint) const {
  return presentedVolumePath(mountPoint, user_, mountPoints_);
}

}  // namespace quillmont
