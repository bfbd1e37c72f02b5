// The kernel's loop devices (loop(4)); what changes them is for the superuser.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/Result.h"
#include "platform/linux/loop_devices.h"
#include "platform/linux/tools/hdiutil/ImageFile.h"
#include "platform/linux/tools/hdiutil/probe.h"
#include "platform/posix/Descriptor.h"

namespace quillmont {

/// The device node, open; the kernel keeps an attached device attached meanwhile. None on failure.
Descriptor openLoop(const std::string& loopName);

/// Names of all devices that carry anything, by whatever name.
std::vector<std::string> attachedLoopNames();

bool loopCarries(const Descriptor& loop, const struct stat& image);

struct NewLoop {
  std::string name;
  Descriptor device;
};

/// Attaches `image` to a free device. The last close releases it: a process that ends before it
/// has mounted anything leaves nothing attached.
Result<NewLoop> configureLoop(const ImageFile& image);

/// Tells the kernel of a partition that it did not find itself; one that it knows is a success.
Result<void> ensurePartition(const Descriptor& loop, const std::string& loopName,
                             const ImageVolume& volume);

/// Makes the last close (unmounting is one) release the device. To be called while it is mounted.
void releaseOnLastClose(const Descriptor& loop);

/// Releases the device at once or with its last user, if it still carries that attachment.
void releaseLoop(const LoopDevice& loop);

/// Whether that very attachment still stands.
bool isAttached(const LoopDevice& loop);

/// Whether that attachment has ended, or ends within `limit`.
bool waitForRelease(const LoopDevice& loop, std::chrono::milliseconds limit);

}  // namespace quillmont
