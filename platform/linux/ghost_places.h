// Names of volumes that live on without a mount, apart from those of the volumes that came after
// them.
#pragma once

#include <vector>

#include "platform/linux/ghosts.h"
#include "platform/linux/image_devices.h"

namespace quillmont {

/// A volume that was detached while it was held leaves its folder to the next one of its name: two
/// images would be listed at one place, and the younger one detached for the older. A ghost whose
/// place is by now that of something else gets one of its own, where nothing is:
/// "/media/ann/Disk (loop3)". What was mounted there before the ghost itself does not count: it
/// only shows again. Of ghosts of several images at one place, the one attached last keeps it.
/// `volumes` are those of `mounts` that are of images.
void nameGhostsApart(std::vector<Ghost>& ghosts, const std::vector<Mount>& mounts,
                     const std::vector<VolumeMount>& volumes);

}  // namespace quillmont
