// Attaching and detaching through the disk service, for ordinary users.
#pragma once

#include <string>
#include <vector>

#include "platform/linux/tools/hdiutil/ImageControl.h"
#include "platform/linux/tools/hdiutil/UDisks.h"

namespace quillmont {

class UDisksImages : public ImageControl {
 public:
  explicit UDisksImages(UDisks service) : service_(std::move(service)) {}

  Result<std::string> deviceOf(const ImageFile& image) override;
  Result<std::string> setUp(const ImageFile& image) override;
  /// The service chooses the place.
  Result<std::string> mount(const std::string& loopName, const ImageVolume& volume,
                            const std::string& place,
                            const std::vector<std::string>& taken) override;
  UnmountOutcome unmount(const VolumeMount& volume, Unmounting manner) override;
  void releaseWithLastUnmount(const std::string& loopName) override;
  void release(const LoopDevice& loop) override;

 private:
  /// Failure: somebody else attached that image, whatever the service would allow us.
  Result<void> checkOwner(const VolumeMount& volume);
  bool isOurs(const std::string& loopName);

  UDisks service_;
  std::vector<std::string> ours_;  ///< as known so far; the service notes owners late
};

}  // namespace quillmont
