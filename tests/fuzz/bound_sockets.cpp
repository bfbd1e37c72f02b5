// One datagram of the kernel's answer about Unix sockets.

#include <sys/sysmacros.h>

#include <vector>

#include "platform/linux/tools/lsof/BoundSockets.h"
#include "tests/fuzz/fuzzing.h"

namespace quillmont::testing {
namespace {

constexpr std::size_t kSmallestRecord = 32;  // header, and what is told of every socket

std::vector<BoundSocket> socketsOf(std::string_view datagram) {
  VolumeIdentity volume;
  volume.devices = {makedev(7, 0), makedev(8, 1)};
  std::vector<BoundSocket> sockets;
  collectBoundSockets(datagram, volume, sockets);
  return sockets;
}

}  // namespace

void tryInput(std::string_view input) {
  const auto all = socketsOf(input);
  require(all.size() <= input.size() / kSmallestRecord, "a record is one socket at most");
  if (input.empty()) return;
  const auto fewer = socketsOf(input.substr(0, input.size() - 1));
  require(fewer.size() <= all.size() && std::equal(fewer.begin(), fewer.end(), all.begin()),
          "an answer that is cut off tells of no other sockets");
}

}  // namespace quillmont::testing
