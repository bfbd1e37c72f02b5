// Volumes that no other process of the machine sees.
#pragma once

#include <string>

namespace quillmont::testing {

/// Gives the calling process, which has one thread, a mount table with none of the machine's disk
/// images in it and an empty /media. What is mounted in it goes with the last process that has it;
/// programs that watch images elsewhere neither see these volumes nor lend theirs. Why it cannot be
/// done; empty once it is.
std::string enterOwnVolumes();

/// Takes every volume of a disk image but the one at `kept` out of the calling process's mount
/// table, so that it holds no other one.
void dropVolumesExcept(const std::string& kept);

/// Whether something is mounted at `place`, as the calling process sees it. Throws where it cannot
/// be told.
bool isMounted(const std::string& place);

}  // namespace quillmont::testing
