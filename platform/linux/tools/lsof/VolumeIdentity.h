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

/// What belongs to any of `volumes`.
VolumeIdentity together(const std::vector<VolumeIdentity>& volumes);

/// What statx() answers for a mount point.
struct MountPointStatus {
  std::uint64_t mountId = 0;
  std::uint64_t device = 0;
};
using MountPointReader = std::function<std::optional<MountPointStatus>(const std::string&)>;

/// The status from what the kernel has in memory: wakes nothing, mounts nothing and asks no server.
std::optional<MountPointStatus> cachedMountPointStatus(const std::string& mountPoint);

/// The system as the identities of its volumes come out of it.
struct VolumeSurroundings {
  std::vector<Mount> mounts;
  std::vector<VolumeMount> volumes;  ///< those of `mounts` that are of images
  std::vector<Ghost> ghosts;
};

/// Where anything is or was mounted.
std::vector<std::string> mountPointsOf(const VolumeSurroundings& system);

/// Where the volume is or was mounted that is presented to `user` as `path`, or that is mounted at
/// `path`; a slash at the end does not count. Empty if no volume is there.
std::string mountPointOfVolume(const std::string& path, const std::string& user,
                               const VolumeSurroundings& system);

/// The identity of what is or was mounted at `mountPoint`. Where mounts are stacked, the one on
/// top; a ghost's is added. Of an image it covers every volume and ghost: an image is detached
/// whole, so its users are counted whole.
VolumeIdentity identifyVolume(const std::string& mountPoint, const VolumeSurroundings& system,
                              const MountPointReader& statusOf);

}  // namespace quillmont
