// Which image a mounted file system lives on.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/mount_table.h"

namespace quillmont {

/// A mount whose file system lives on a loop device, one of its partitions, or a mapping of these.
struct VolumeMount {
  std::string loopName;    ///< "loop3"
  std::string deviceNode;  ///< as mounted: "/dev/loop3", "/dev/loop3p1", "/dev/mapper/backup"
  Mount mount;
};

/// The loop device below the device that a mount names as its source; nothing for another source.
using LoopFinder = std::function<std::optional<std::string>(const std::string& source)>;
std::optional<std::string> loopOfSource(const std::string& source);

/// The mounts of images among `mounts`, in their order. Neither opens a device nor looks into a
/// mounted file system. `loopOf` is another one only in tests.
std::vector<VolumeMount> imageMounts(const std::vector<Mount>& mounts,
                                     const LoopFinder& loopOf = loopOfSource);

/// Whether a file system is mounted whole: a bind mount of a folder is no volume. On btrfs every
/// subvolume has a root of its own.
bool isVolume(const Mount& mount);

/// The loop device below the block device that `folder` of sysfs describes: itself, the disk of a
/// partition, or what a mapping is made of.
std::optional<std::string> loopBelow(const std::string& folder);

/// Names of the partitions of `loopName` in the order of their numbers: "loop3p1" ... `sysBlock` is
/// /sys/block but in tests.
std::vector<std::string> partitionNames(const std::string& loopName,
                                        const std::string& sysBlock = "/sys/block");

/// "loop3p2", or "loop3" for partition 0, the device as a whole.
std::string deviceName(const std::string& loopName, int partition);

}  // namespace quillmont
