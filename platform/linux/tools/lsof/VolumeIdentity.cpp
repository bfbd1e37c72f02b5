#include "platform/linux/tools/lsof/VolumeIdentity.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <algorithm>

#include "platform/linux/volume_paths.h"

namespace quillmont {
namespace {

template <class List, class Value>
bool contains(const List& list, const Value& value) {
  return std::find(list.begin(), list.end(), value) != list.end();
}

std::uint64_t superDevice(const Mount& mount) {
  return makedev(mount.deviceMajor, mount.deviceMinor);
}

std::string resolve(std::string path, const std::string& user, const std::vector<Mount>& mounts,
                    const std::vector<Ghost>& ghosts) {
  while (path.size() > 1 && path.ends_with('/')) path.pop_back();
  std::vector<std::string> mountPoints;
  for (const auto& mount : mounts) mountPoints.push_back(mount.mountPoint);
  for (const auto& ghost : ghosts) mountPoints.push_back(ghost.mountPoint);
  const auto mountPoint = volumeMountPoint(path, user, mountPoints);
  if (!mountPoint.empty()) return mountPoint;
  return contains(mountPoints, path) ? path : std::string();
}

const Mount* topMount(const std::string& mountPoint, const std::vector<Mount>& mounts) {
  const Mount* top = nullptr;
  for (const auto& mount : mounts) {
    if (mount.mountPoint != mountPoint) continue;
    // A table that was changed while it was read may hold them in any order.
    if (!top || top->parentId != mount.id) top = &mount;
  }
  return top;
}

void addMount(VolumeIdentity& volume, const Mount& top, const std::vector<Mount>& mounts,
              const MountPointReader& statusOf) {
  const auto device = superDevice(top);
  volume.devices.push_back(device);
  for (const auto& mount : mounts) {
    if (superDevice(mount) == device) {
      volume.mountIds.push_back(static_cast<std::uint64_t>(mount.id));
    }
  }
  // Something mounted over a folder above would answer in the volume's place.
  const auto status = statusOf(top.mountPoint);
  if (!status || status->mountId != static_cast<std::uint64_t>(top.id)) return;
  if (!volume.hasDevice(status->device)) volume.devices.push_back(status->device);
}

void addGhost(VolumeIdentity& volume, const Ghost& ghost, const std::vector<Mount>& mounts) {
  for (const auto device : {ghost.superDevice, ghost.statDevice}) {
    if (device != 0 && !volume.hasDevice(device)) volume.devices.push_back(device);
  }
  // The kernel gives the identifier of a mount that is really gone to the next one.
  const bool givenAway = std::any_of(mounts.begin(), mounts.end(), [&](const Mount& mount) {
    return static_cast<std::uint64_t>(mount.id) == ghost.mountId;
  });
  if (!givenAway && ghost.mountId != 0) volume.mountIds.push_back(ghost.mountId);
}

}  // namespace

bool VolumeIdentity::hasDevice(std::uint64_t device) const {
  return contains(devices, device);
}

bool VolumeIdentity::hasMount(std::uint64_t mountId) const {
  return contains(mountIds, mountId);
}

std::optional<MountPointStatus> cachedMountPointStatus(const std::string& mountPoint) {
  struct statx status = {};
  constexpr int kFlags = AT_STATX_DONT_SYNC | AT_NO_AUTOMOUNT | AT_SYMLINK_NOFOLLOW;
  if (statx(AT_FDCWD, mountPoint.c_str(), kFlags, STATX_MNT_ID, &status) != 0) return std::nullopt;
  if ((status.stx_mask & STATX_MNT_ID) == 0) return std::nullopt;
  return MountPointStatus{status.stx_mnt_id, makedev(status.stx_dev_major, status.stx_dev_minor)};
}

std::optional<VolumeIdentity> identifyVolume(const std::string& path, const std::string& user,
                                             const std::vector<Mount>& mounts,
                                             const std::vector<Ghost>& ghosts,
                                             const MountPointReader& statusOf) {
  const auto mountPoint = resolve(path, user, mounts, ghosts);
  if (mountPoint.empty()) return std::nullopt;
  VolumeIdentity volume;
  if (const auto* const top = topMount(mountPoint, mounts))
    addMount(volume, *top, mounts, statusOf);
  for (const auto& ghost : ghosts) {
    if (ghost.mountPoint == mountPoint) addGhost(volume, ghost, mounts);
  }
  return volume;
}

}  // namespace quillmont
