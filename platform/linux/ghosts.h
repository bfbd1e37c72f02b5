// Images that were detached lazily while somebody still held them. The mount table forgets such a
// mount at once, while the file system lives on until its last file is closed. A record of each is
// kept in the program's runtime folder, so that the image stays listed with its mount point, and
// its users stay known, until the loop device is really released.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/Result.h"
#include "platform/linux/loop_devices.h"

namespace quillmont {

/// A mount that was taken out of the mount table.
struct Ghost {
  std::string loopName;            ///< "loop3", whose release ends the ghost
  std::uint64_t loopSequence = 0;  ///< of that attachment
  std::string imagePath;
  std::string deviceNode;         ///< of the volume: "/dev/loop3" or "/dev/loop3p1"
  std::string mountPoint;         ///< where it was mounted
  std::uint64_t mountId = 0;      ///< of the mount that was detached
  std::uint64_t superDevice = 0;  ///< makedev() of the superblock, as the mount table told it
  std::uint64_t statDevice = 0;   ///< makedev() that stat() answers for files of the volume's root
  bool operator==(const Ghost&) const = default;
};

/// Remembers a mount that is about to be detached lazily. Written whole before the detach.
Result<void> rememberGhost(const Ghost& ghost);

/// Drops the record of `ghost`, as after a lazy detach that failed.
void forgetGhost(const Ghost& ghost);

/// The ghosts that still live: of this boot, with their loop device attached to the same image by
/// the same attachment. Records of others are removed in passing; damaged ones too.
std::vector<Ghost> livingGhosts(const std::vector<LoopDevice>& attached);

}  // namespace quillmont
