// Images that were detached lazily while somebody still held them. The mount table forgets such a
// mount at once, while the file system lives on until its last file is closed. A record of each is
// kept in the program's runtime folder, so that the image stays listed with its mount point, and
// its users stay known, until the loop device is really released. Volumes of the same image that
// were unmounted cleanly have records too: an image is released whole or not at all.
//
// The runtime folder is that of the environment: a tool that runs with another XDG_RUNTIME_DIR does
// not see these records.
//
// A record is removed only on proof that it is over: it is of another boot, it was read and is
// none, its loop device now tells another sequence, or the kernel's list of devices is there and
// that device carries nothing. A failure to look is no proof; at most it leaves a ghost out of an
// answer.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/Result.h"
namespace quillmont {

/// A mount that was taken out of the mount table while its image stayed attached.
struct Ghost {
  std::string loopName;            ///< "loop3", whose release ends the ghost
  std::uint64_t loopSequence = 0;  ///< of that attachment
  std::string imagePath;
  std::string deviceNode;         ///< of the volume: "/dev/loop3" or "/dev/loop3p1"
  std::string mountPoint;         ///< where it was mounted
  std::uint64_t mountId = 0;      ///< of the mount that was detached
  std::uint64_t superDevice = 0;  ///< makedev() of the superblock, as the mount table told it
  std::uint64_t statDevice = 0;   ///< makedev() that stat() answers for files of the volume's root
  bool unmounted = false;         ///< cleanly: its mountId may be another mount's by now
  bool covered = false;           ///< something else was mounted at mountPoint, below it
  bool operator==(const Ghost&) const = default;
};

/// Remembers a mount. Before a lazy detach, not after it.
Result<void> rememberGhost(const Ghost& ghost);

/// Drops the record of `ghost`, as after a lazy detach that failed.
void forgetGhost(const Ghost& ghost);

/// The ghosts that still live: of this boot, with their loop device attached to the same image by
/// the same attachment. Records that are over are removed in passing. `sysBlock` is /sys/block but
/// in tests.
std::vector<Ghost> livingGhosts(const std::string& sysBlock = "/sys/block");

}  // namespace quillmont
