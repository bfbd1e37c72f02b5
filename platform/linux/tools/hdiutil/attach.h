// Attaching an image and mounting its volumes.
#pragma once

#include <string>
#include <vector>

#include "platform/Result.h"
#include "platform/linux/ImageTable.h"
#include "platform/linux/tools/hdiutil/ImageControl.h"

namespace quillmont {

struct Attachment {
  std::vector<ImageEntity> mounted;   ///< never empty
  std::vector<std::string> warnings;  ///< why other volumes of the image could not be mounted
};

/// Attaches the image at `path` and mounts its volumes. An image that is attached already is not
/// attached again: its volumes are mounted if they are not, and volumes that were detached lazily
/// come back to their places. What meanwhile somebody else has mounted counts as mounted. Whatever
/// was mounted is released with its last unmount, as far as the user's rights go. Failure: nothing
/// could be mounted, or it cannot be told whether the image is attached already; then nothing stays
/// attached that was not so before. A process that is killed before it has mounted anything leaves
/// nothing attached either, but for one: a device that the disk service set up stays, and the next
/// attach of the image takes it.
Result<Attachment> attachImage(const std::string& path, ImageControl& control);

}  // namespace quillmont
