// Which loop device carries an image file, as far as names tell. Only the superuser may ask the
// devices themselves.
#pragma once

#include <string>
#include <vector>

#include "platform/Result.h"
#include "platform/linux/loop_devices.h"
#include "platform/linux/tools/hdiutil/ImageFile.h"

namespace quillmont {

enum class SameFile { yes, no, unknown };

/// Whether `loop` carries `image`. A backing file that was deleted or is out of reach leaves only
/// its name to go by: then "unknown" if that is the image's.
SameFile carriesFile(const LoopDevice& loop, const ImageFile& image);

/// The name of the one of `loops` that carries `image`; empty if none does. Failure: it cannot be
/// told.
Result<std::string> findLoopOf(const ImageFile& image, const std::vector<LoopDevice>& loops);

}  // namespace quillmont
