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
  bool operator==(const LoopDevice&) const = default;
};

/// The attached loop devices in the order of their numbers. One whose backing file cannot be read
/// is left out. `sysBlock` is /sys/block but in tests.
std::vector<LoopDevice> attachedLoopDevices(const std::string& sysBlock = "/sys/block");

}  // namespace quillmont
