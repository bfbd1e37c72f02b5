// Sockets that are bound to a file of the volume. Their descriptors lead to the socket and not to
// that file, yet they hold the volume: it cannot be unmounted while they are open.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/linux/tools/lsof/VolumeIdentity.h"

namespace quillmont {

/// The Unix sockets of the calling process's network namespace that are bound on a volume.
class BoundSockets {
 public:
  /// Asks the kernel (sock_diag(7)); a kernel that cannot tell has none.
  static BoundSockets onVolume(const VolumeIdentity& volume);

  /// Whether a descriptor of this device and inode is one of them.
  bool contains(std::uint64_t device, std::uint64_t inode) const;

 private:
  std::uint64_t device_ = 0;  ///< of all sockets
  std::vector<std::uint64_t> inodes_;
};

/// Adds to `inodes` the sockets bound on `volume` that one datagram of the kernel's answer tells.
/// False once the answer has ended.
bool collectBoundSockets(std::string_view datagram, const VolumeIdentity& volume,
                         std::vector<std::uint64_t>& inodes);

}  // namespace quillmont
