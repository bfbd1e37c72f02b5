// Detaching an image whole.
#pragma once

#include <string>

#include "platform/Result.h"
#include "platform/linux/ImageTable.h"
#include "platform/linux/tools/hdiutil/ImageControl.h"

namespace quillmont {

/// Unmounts every volume of the image that is mounted at `place` (or presented there, or has this
/// device node) and releases its loop device. A volume that is in use fails the call unless
/// `force` is given: then its data are written out, it leaves the mount table at once, and a ghost
/// of it stays until its last user lets go, so that nobody loses what he is writing. Where the
/// image stays attached, for such a user or for anything else, all its volumes keep ghosts. An
/// image that holds another mount or another attached image is not detached. Success does not say
/// that the loop device is released already.
Result<void> detachImage(const std::string& place, bool force, ImageControl& control);

/// The same with what is attached and mounted as `table` has it.
Result<void> detachImage(const ImageTable& table, const std::string& place, bool force,
                         ImageControl& control);

}  // namespace quillmont
