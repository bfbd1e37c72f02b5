// The record of one mounted disk image, as the monitor publishes it and the panel shows it.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace quillmont {

/// A plain value, copied freely between threads. The first three fields say which image it is and
/// never change; the others change with each look at the system. Equality compares all seven, in
/// their order.
struct DiskImage {
  std::string imagePath;   ///< absolute path of the image file, as the disk-image tool reports it
  std::string mountPoint;  ///< where its volume is mounted, below /Volumes/
  std::string volumeName;  ///< the last component of the mount point
  double idleSeconds;      ///< since it was last seen in use, or since it was mounted
  bool inUse;              ///< what the last in-use check found
  std::vector<std::string> activeProcesses;  ///< names of its users; empty when it is not in use
  bool isExcluded;                           ///< the user wants it never ejected automatically

  DiskImage(std::string imagePath_, std::string mountPoint_, std::string volumeName_,
            double idleSeconds_, bool inUse_, std::vector<std::string> activeProcesses_,
            bool isExcluded_)
      : imagePath(std::move(imagePath_)),
        mountPoint(std::move(mountPoint_)),
        volumeName(std::move(volumeName_)),
        idleSeconds(idleSeconds_),
        inUse(inUse_),
        activeProcesses(std::move(activeProcesses_)),
        isExcluded(isExcluded_) {}

  /// The record's identity: two records of one image file are the same image.
  const std::string& id() const { return imagePath; }

  bool operator==(const DiskImage&) const = default;
};

}  // namespace quillmont
