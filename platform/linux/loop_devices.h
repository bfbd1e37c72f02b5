// Loop devices that carry an image file, as /sys/block tells them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillmont {

struct LoopDevice {
  std::string name;         ///< "loop3"
  std::string backingFile;  ///< absolute path, without the kernel's mark for a deleted file
  std::uint64_t sequence =
      0;  ///< differs for each attachment since the machine started; 0 if unknown
  /// The backing file was deleted: a file that is now at its path is another one.
  bool deleted = false;
  bool operator==(const LoopDevice&) const = default;
};

/// The attached loop devices in the order of their numbers. One whose backing file cannot be read
/// is left out. `sysBlock` is /sys/block but in tests.
std::vector<LoopDevice> attachedLoopDevices(const std::string& sysBlock = "/sys/block");

/// What can be told of one loop device at this moment.
struct LoopState {
  enum class Kind { attached, released, unknown };
  Kind kind = Kind::unknown;
  std::optional<std::uint64_t> sequence;   ///< of an attached one, where it can be read
  std::optional<std::string> backingFile;  ///< likewise, as in LoopDevice
};

/// Looks at `loopName` alone. It counts as released only where the kernel's list of devices is
/// there and this one carries nothing.
LoopState loopState(const std::string& loopName, const std::string& sysBlock = "/sys/block");

}  // namespace quillmont
