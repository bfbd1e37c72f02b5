// The ways in which a process can use a volume.
#pragma once

#include <string>
#include <vector>

namespace quillmont::testing {

/// Uses the volume mounted at `volume` from within the calling process for as long as that lives;
/// false if it cannot. For a Holder.
struct VolumeUse {
  const char* name;
  bool (*take)(const std::string& volume);
};

/// All ways that the open-files tool knows of. Each keeps the image's device attached, and but for
/// those within another mount table also the mount.
const std::vector<VolumeUse>& volumeUses();

/// Leaves a file of the volume open in a message that nobody has received: it belongs to no
/// process, and no list of processes tells of it.
bool useInFlight(const std::string& volume);

}  // namespace quillmont::testing
