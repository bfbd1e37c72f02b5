// What is attached and mounted at one moment.
#pragma once

#include <string>
#include <vector>

#include "platform/Result.h"
#include "platform/linux/ghosts.h"
#include "platform/linux/image_devices.h"
#include "platform/linux/loop_devices.h"

namespace quillmont {

/// One device of an image, at one place.
struct ImageEntity {
  std::string deviceNode;
  std::string mountPoint;  ///< empty for a device that is not mounted
  bool operator==(const ImageEntity&) const = default;
};

/// An attached image: the whole device first, then its partitions and mappings. A device that is
/// mounted at several places comes once for each. Volumes that were detached lazily and still have
/// holders count as mounted, at a place of their own where the old one is another's by now.
struct AttachedImage {
  LoopDevice loop;
  std::vector<ImageEntity> entities;
};

class ImageTable {
 public:
  /// The system as it stands. Opens no device. Failure: the mount table cannot be read.
  static Result<ImageTable> read();

  /// `partitions` are names of partitions of any of the loops.
  ImageTable(const std::vector<LoopDevice>& loops, const std::vector<std::string>& partitions,
             std::vector<Mount> mounts, std::vector<VolumeMount> volumes, std::vector<Ghost> ghosts,
             std::string user);

  /// In the order of the loop numbers.
  const std::vector<AttachedImage>& images() const { return images_; }

  /// The attached image whose volume has this presented or real mount point, or this device node.
  /// Null if there is none.
  const AttachedImage* find(const std::string& place) const;

  /// Every mount of `loopName`, bind mounts of parts of it among them, the latest first.
  std::vector<VolumeMount> mountsOf(const std::string& loopName) const;

  std::vector<Ghost> ghostsOf(const std::string& loopName) const;

  /// Whether something else is mounted at the same place, below `mount`.
  bool coversAnother(const Mount& mount) const;

  /// Where something is mounted that stands on one of `volumes` without being one; empty if
  /// nothing is.
  std::string mountInside(const std::vector<VolumeMount>& volumes) const;

  /// The file of another attached image that lies on one of `volumes`; empty if there is none.
  std::string imageInside(const std::vector<VolumeMount>& volumes) const;

  /// Those of all images.
  const std::vector<Ghost>& ghosts() const { return ghosts_; }

  std::string presented(const std::string& mountPoint) const;

 private:
  AttachedImage describe(const LoopDevice& loop, const std::vector<std::string>& partitions) const;

  std::vector<Mount> mounts_;
  std::vector<VolumeMount> volumes_;
  std::vector<Ghost> ghosts_;
  std::string user_;
  std::vector<std::string> mountPoints_;
  std::vector<AttachedImage> images_;
};

}  // namespace quillmont
