#include "platform/linux/tools/lsof/BoundSockets.h"

#include <fcntl.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <linux/sock_diag.h>
#include <linux/unix_diag.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/time.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

#include "platform/posix/Descriptor.h"

namespace quillmont {
namespace {

bool requestBoundSockets(int netlink) {
  struct {
    nlmsghdr header;
    unix_diag_req request;
  } message = {};
  message.header.nlmsg_len = sizeof message;
  message.header.nlmsg_type = SOCK_DIAG_BY_FAMILY;
  message.header.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
  message.request.sdiag_family = AF_UNIX;
  message.request.udiag_states = ~0u;
  message.request.udiag_show = UDIAG_SHOW_VFS;
  return send(netlink, &message, sizeof message, 0) == static_cast<ssize_t>(sizeof message);
}

/// Cuts a record off `bytes` that begins with a `Header`, whose first member `length` is, and is
/// padded to four bytes. False at the end and where the lengths do not fit.
template <class Header, class Length>
bool takeRecord(const char*& bytes, std::size_t& size, Header& header, Length Header::*length) {
  if (size < sizeof header) return false;
  std::memcpy(&header, bytes, sizeof header);
  if (header.*length < sizeof header || header.*length > size) return false;
  const auto padded = std::min<std::size_t>(size, (header.*length + 3u) & ~std::size_t{3});
  bytes += padded;
  size -= padded;
  return true;
}

/// The device of the file that a socket with these attributes is bound to.
std::optional<std::uint64_t> deviceIn(const char* attributes, std::size_t size) {
  rtattr header;
  for (const char* record = attributes; takeRecord(attributes, size, header, &rtattr::rta_len);
       record = attributes) {
    unix_diag_vfs file;
    if (header.rta_type != UNIX_DIAG_VFS || header.rta_len < sizeof header + sizeof file) continue;
    std::memcpy(&file, record + sizeof header, sizeof file);
    constexpr unsigned kMinorBits = 20;  // of the kernel's own device numbers
    return makedev(file.udiag_vfs_dev >> kMinorBits, file.udiag_vfs_dev & ((1u << kMinorBits) - 1));
  }
  return std::nullopt;
}

bool isBefore(const BoundSocket& one, const BoundSocket& other) {
  return one.inode < other.inode;
}

}  // namespace

bool collectBoundSockets(std::string_view datagram, const VolumeIdentity& volumes,
                         std::vector<BoundSocket>& sockets) {
  const char* bytes = datagram.data();
  std::size_t size = datagram.size();
  nlmsghdr header;
  for (const char* record = bytes; takeRecord(bytes, size, header, &nlmsghdr::nlmsg_len);
       record = bytes) {
    if (header.nlmsg_type != SOCK_DIAG_BY_FAMILY) return false;
    unix_diag_msg socket;
    constexpr std::size_t kFixed = sizeof header + sizeof socket;
    if (header.nlmsg_len < kFixed) return false;
    std::memcpy(&socket, record + sizeof header, sizeof socket);
    const auto device = deviceIn(record + kFixed, header.nlmsg_len - kFixed);
    if (device && volumes.hasDevice(*device)) sockets.push_back({socket.udiag_ino, *device});
  }
  return true;
}

BoundSockets BoundSockets::onVolumes(const VolumeIdentity& volumes) {
  BoundSockets sockets;
  const Descriptor netlink(socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_SOCK_DIAG));
  struct statx status = {};
  if (!netlink || statx(netlink.get(), "", AT_EMPTY_PATH, STATX_INO, &status) != 0) return sockets;
  sockets.device_ = makedev(status.stx_dev_major, status.stx_dev_minor);
  constexpr timeval kPatience = {1, 0};
  setsockopt(netlink.get(), SOL_SOCKET, SO_RCVTIMEO, &kPatience, sizeof kPatience);
  if (!requestBoundSockets(netlink.get())) return sockets;
  std::array<char, 32768> answer;
  for (bool more = true; more;) {
    const auto count = recv(netlink.get(), answer.data(), answer.size(), 0);
    more = count > 0 && collectBoundSockets({answer.data(), static_cast<std::size_t>(count)},
                                            volumes, sockets.sockets_);
  }
  std::sort(sockets.sockets_.begin(), sockets.sockets_.end(), isBefore);
  return sockets;
}

std::optional<std::uint64_t> BoundSockets::placeOf(std::uint64_t device,
                                                   std::uint64_t inode) const {
  if (device != device_) return std::nullopt;
  const auto found =
      std::lower_bound(sockets_.begin(), sockets_.end(), BoundSocket{inode, 0}, isBefore);
  if (found == sockets_.end() || found->inode != inode) return std::nullopt;
  return found->device;
}

}  // namespace quillmont
