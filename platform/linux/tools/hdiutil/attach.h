// Attaching an image and mounting its volumes.
#pragma once

#include <string>
#include <vector>

#include "platform/Result.h"
#include "platform/linux/tools/hdiutil/ImageControl.h"
#include "platform/linux/tools/hdiutil/ImageTable.h"

namespace quillmont {

struct Attachment {
  std::vector<ImageEntity> mounted;   ///< never empty
  std::vector<std::string> warnings;  ///< why other volumes of the image could not be mounted
};

/// Attaches the image at `path` and mounts its volumes. An image that is attached already is not
/// attached again: its volumes are mounted if they are not, and volumes that were detached lazily
/// come back to their places. Failure: nothing could be mounted; then nothing stays attached that
/// was not so before.
Result<Attachment> attachImage(const std::string& path, ImageControl& control);

}  // namespace quillmont
