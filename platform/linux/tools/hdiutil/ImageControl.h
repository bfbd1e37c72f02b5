// How images are attached and detached: by the kernel itself for the superuser, through the disk
// service for everybody else.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/Result.h"
#include "platform/linux/image_devices.h"
#include "platform/linux/loop_devices.h"
#include "platform/linux/tools/hdiutil/ImageFile.h"
#include "platform/linux/tools/hdiutil/probe.h"

namespace quillmont {

enum class Unmounting {
  whenUnused,  ///< only if nobody uses the volume
  lazily,      ///< out of the mount table at once; its users keep what they have open
};

struct UnmountOutcome {
  bool done = false;
  bool busy = false;  ///< not done because somebody uses the volume
  std::string text;   ///< why it was not done
};

class ImageControl {
 public:
  virtual ~ImageControl() = default;

  /// The name of the loop device that carries this very file, under whatever name; empty if none
  /// does. It will not be released before this object goes, where that can be had. Failure: it
  /// cannot be told, and a second device for one file would lose data.
  virtual Result<std::string> deviceOf(const ImageFile& image) = 0;

  /// Sets up a loop device for `image` and returns its name.
  virtual Result<std::string> setUp(const ImageFile& image) = 0;

  /// Mounts `volume` of the image on `loopName` and returns where: at `place` if that is not empty
  /// and can be had, else in the user's media folder; where nothing is mounted, and not at any of
  /// `taken`.
  virtual Result<std::string> mount(const std::string& loopName, const ImageVolume& volume,
                                    const std::string& place,
                                    const std::vector<std::string>& taken) = 0;

  /// Whether that very attachment still stands.
  virtual bool isAttached(const LoopDevice& loop) const;

  virtual UnmountOutcome unmount(const VolumeMount& volume, Unmounting manner) = 0;

  /// From now on the last unmount releases the loop device.
  virtual void releaseWithLastUnmount(const std::string& loopName) = 0;

  /// Releases the loop device, or lets it go with its last user. Nothing happens to a device that
  /// meanwhile carries another attachment.
  virtual void release(const LoopDevice& loop) = 0;
};

/// The one that the calling user's rights ask for. Failure: the disk service cannot be reached.
Result<std::unique_ptr<ImageControl>> imageControl();

}  // namespace quillmont
