// What an image file holds, found in the file itself.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/Result.h"

namespace quillmont {

/// A file system of an image.
struct ImageVolume {
  int partition = 0;        ///< its number; 0: the image as a whole
  std::uint64_t start = 0;  ///< bytes
  std::uint64_t size = 0;   ///< bytes; 0 for the image as a whole
  std::string type;         ///< "ext4"
  std::string label;        ///< may be empty
  std::string uuid;         ///< may be empty
};

/// The file systems of the image open as `fd`: the one that fills it, or those of its partitions.
/// Failure: it holds none, or what it holds cannot be told.
Result<std::vector<ImageVolume>> probeImage(int fd);

}  // namespace quillmont
