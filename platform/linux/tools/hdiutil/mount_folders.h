// The folders that volumes are mounted on: /media/<user>/<label>, as the disk service has them.
#pragma once

#include <string>
#include <vector>

#include "platform/Result.h"
#include "platform/linux/tools/hdiutil/probe.h"

namespace quillmont {

/// A folder name for `volume`: its label, else its UUID, else "disk".
std::string volumeFolderName(const ImageVolume& volume);

/// Makes the folder `name` in `parent`, or `name`1, `name`2 ... where that is among `taken` or is
/// anything but an empty folder. An empty folder that was left behind is used again. A name too
/// long for the system is cut at the end of a character.
Result<std::string> makeVolumeFolder(const std::string& parent, const std::string& name,
                                     const std::vector<std::string>& taken);

/// The calling user's folder in `media`, made if it is missing. Failure: it cannot be made, or one
/// of the two is no folder that only the superuser can change. `media` is /media but in tests.
Result<std::string> userMediaFolder(const std::string& media = "/media");

/// Removes the empty folder of a volume that was unmounted if it is directly in the media folder of
/// a user; anything else is left alone.
void removeVolumeFolder(const std::string& mountPoint);

}  // namespace quillmont
