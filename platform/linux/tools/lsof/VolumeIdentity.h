// What tells a volume's files from all others.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/Result.h"
#include "platform/linux/ghosts.h"
#include "platform/linux/image_devices.h"
#include "platform/linux/mount_table.h"

namespace quillmont {

/// A file belongs to the volume when stat() answers one of its devices or when it was reached
/// through one of its mounts. Both are needed: a btrfs subvolume has a device number of its own
/// that no table names, and another mount namespace has mounts of its own.
struct VolumeIdentity {
  std::vector<std::uint64_t> devices;   ///< makedev()
  std::vector<std::uint64_t> mountIds;  ///< in the calling process's mount namespace

  bool hasDevice(std::uint64_t device) const;
  bool hasMount(std::uint64_t mountId) const;
  bool operator==(const VolumeIdentity&) const = default;
};

/// What statx() answers for a mount point.
struct MountPointStatus {
  std::uint64_t mountId = 0;
  std::uint64_t device = 0;
};
using MountPointReader = std::function<std::optional<MountPointStatus>(const std::string&)>;

/// The status from what the kernel has in memory: wakes nothing, mounts nothing and asks no server.
std::optional<MountPointStatus> cachedMountPointStatus(const std::string& mountPoint);

/// The identity of the volume that is presented to `user` as `path`, or that is mounted at `path`;
/// a slash at the end does not count. Where mounts are stacked, the one on top; a ghost's is added.
/// Of an image, whose mounts are among `volumes`, it covers every volume and ghost: an image is
/// detached whole, so its users are counted whole. Nothing if no volume is there.
std::optional<VolumeIdentity> identifyVolume(const std::string& path, const std::string& user,
                                             const std::vector<Mount>& mounts,
                                             const std::vector<VolumeMount>& volumes,
                                             const std::vector<Ghost>& ghosts,
                                             const MountPointReader& statusOf);

}  // namespace quillmont
