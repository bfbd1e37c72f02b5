// The kernel's table of mounts, as /proc/self/mountinfo tells it (proc(5)).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Result.h"

namespace quillmont {

/// One mount. Escapes are decoded: names are the bytes that the file system knows.
struct Mount {
  int id = 0;
  int parentId = 0;
  unsigned deviceMajor = 0;  ///< of the superblock; on btrfs not what stat() answers
  unsigned deviceMinor = 0;
  std::string root;  ///< what of the file system is mounted: "/" but for bind mounts
  std::string mountPoint;
  std::string type;
  std::string source;  ///< usually the device node
  bool operator==(const Mount&) const = default;
};

/// The file with the table of the calling process's mount namespace.
inline constexpr char kMountTable[] = "/proc/self/mountinfo";

/// Reads the table's text. Lines that are none are passed over, never a crash.
std::vector<Mount> parseMountTable(std::string_view text);

/// The table as it stands, of the calling process's mount namespace.
Result<std::vector<Mount>> readMountTable();

}  // namespace quillmont
