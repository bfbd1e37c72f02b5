// Sockets that are bound to a file of the volume. Their descriptors lead to the socket and not to
// that file, yet they hold the volume: it cannot be unmounted while they are open.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/linux/tools/lsof/VolumeIdentity.h"

namespace quillmont {

/// A socket, and the device of the file that it is bound to.
struct BoundSocket {
  std::uint64_t inode = 0;
  std::uint64_t device = 0;  ///< makedev() of the superblock
  bool operator==(const BoundSocket&) const = default;
};

/// The Unix sockets of the calling process's network namespace that are bound on some volumes.
class BoundSockets {
 public:
  /// Asks the kernel (sock_diag(7)); a kernel that cannot tell has none.
  static BoundSockets onVolumes(const VolumeIdentity& volumes);

  /// Where the socket to which a descriptor of this device and inode leads is bound; nothing if it
  /// is none of these.
  std::optional<std::uint64_t> placeOf(std::uint64_t device, std::uint64_t inode) const;

 private:
  std::uint64_t device_ = 0;  ///< of all sockets
  std::vector<BoundSocket> sockets_;
};

/// Adds to `sockets` those bound on `volumes` that one datagram of the kernel's answer tells. False
/// once the answer has ended.
bool collectBoundSockets(std::string_view datagram, const VolumeIdentity& volumes,
                         std::vector<BoundSocket>& sockets);

}  // namespace quillmont
