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

template <class Value>
void addOnce(std::vector<Value>& list, const Value& value) {
  if (!contains(list, value)) list.push_back(value);
}

std::uint64_t superDevice(const Mount& mount) {
  return makedev(mount.deviceMajor, mount.deviceMinor);
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
  addOnce(volume.devices, device);
  for (const auto& mount : mounts) {
    if (superDevice(mount) == device) {
      addOnce(volume.mountIds, static_cast<std::uint64_t>(mount.id));
    }
  }
  // Something mounted over a folder above would answer in the volume's place.
  const auto status = statusOf(top.mountPoint);
  if (!status || status->mountId != static_cast<std::uint64_t>(top.id)) return;
  addOnce(volume.devices, status->device);
}

/// A number that belongs to no block device is given to the next file system, once its own is
/// unmounted.
bool isGivenAway(std::uint64_t device, const Ghost& ghost, const std::vector<Mount>& mounts) {
  return ghost.unmounted && major(device) == 0 &&
         std::any_of(mounts.begin(), mounts.end(),
                     [&](const Mount& mount) { return superDevice(mount) == device; });
}

void addGhost(VolumeIdentity& volume, const Ghost& ghost, const std::vector<Mount>& mounts) {
  for (const auto device : {ghost.superDevice, ghost.statDevice}) {
    if (device != 0 && !isGivenAway(device, ghost, mounts)) addOnce(volume.devices, device);
  }
  // The kernel gives the identifier of a mount that is really gone to the next one, maybe in a
  // mount namespace that we do not see.
  if (ghost.unmounted || ghost.mountId == 0) return;
  const bool givenAway = std::any_of(mounts.begin(), mounts.end(), [&](const Mount& mount) {
    return static_cast<std::uint64_t>(mount.id) == ghost.mountId;
  });
  if (!givenAway) addOnce(volume.mountIds, ghost.mountId);
}

/// The loop devices of what is or was mounted at `mountPoint`.
std::vector<std::string> loopsAt(const std::string& mountPoint, const Mount* top,
                                 const std::vector<VolumeMount>& volumes,
                                 const std::vector<Ghost>& ghosts) {
  std::vector<std::string> loops;
  for (const auto& volume : volumes) {
    if (top && volume.mount.id == top->id) addOnce(loops, volume.loopName);
  }
  for (const auto& ghost : ghosts) {
    if (ghost.mountPoint == mountPoint) addOnce(loops, ghost.loopName);
  }
  return loops;
}

}  // namespace

bool VolumeIdentity::hasDevice(std::uint64_t device) const {
  return contains(devices, device);
}

bool VolumeIdentity::hasMount(std::uint64_t mountId) const {
  return contains(mountIds, mountId);
}

VolumeIdentity together(const std::vector<VolumeIdentity>& volumes) {
  VolumeIdentity all;
  for (const auto& volume : volumes) {
    for (const auto device : volume.devices) addOnce(all.devices, device);
    for (const auto mountId : volume.mountIds) addOnce(all.mountIds, mountId);
  }
  return all;
}

std::optional<MountPointStatus> cachedMountPointStatus(const std::string& mountPoint) {
  struct statx status = {};
  constexpr int kFlags = AT_STATX_DONT_SYNC | AT_NO_AUTOMOUNT | AT_SYMLINK_NOFOLLOW;
  if (statx(AT_FDCWD, mountPoint.c_str(), kFlags, STATX_MNT_ID, &status) != 0) return std::nullopt;
  if ((status.stx_mask & STATX_MNT_ID) == 0) return std::nullopt;
  return MountPointStatus{status.stx_mnt_id, makedev(status.stx_dev_major, status.stx_dev_minor)};
}

std::vector<std::string> mountPointsOf(const VolumeSurroundings& system) {
  std::vector<std::string> mountPoints;
  for (const auto& mount : system.mounts) mountPoints.push_back(mount.mountPoint);
  for (const auto& ghost : system.ghosts) mountPoints.push_back(ghost.mountPoint);
  return mountPoints;
}

std::string mountPointOfVolume(const std::string& path, const std::string& user,
                               const VolumeSurroundings& system) {
  auto asked = path;
  while (asked.size() > 1 && asked.ends_with('/')) asked.pop_back();
  const auto mountPoints = mountPointsOf(system);
  auto mountPoint = volumeMountPoint(asked, user, mountPoints);
  if (!mountPoint.empty()) return mountPoint;
  return contains(mountPoints, asked) ? asked : std::string();
}

VolumeIdentity identifyVolume(const std::string& mountPoint, const VolumeSurroundings& system,
                              const MountPointReader& statusOf) {
  const auto& [mounts, volumes, ghosts] = system;
  VolumeIdentity volume;
  const auto* const top = topMount(mountPoint, mounts);
  if (top) addMount(volume, *top, mounts, statusOf);
  const auto loops = loopsAt(mountPoint, top, volumes, ghosts);
  for (const auto& other : volumes) {
    if (contains(loops, other.loopName)) addMount(volume, other.mount, mounts, statusOf);
  }
  for (const auto& ghost : ghosts) {
    if (contains(loops, ghost.loopName)) addGhost(volume, ghost, mounts);
  }
  return volume;
}

}  // namespace quillmont
