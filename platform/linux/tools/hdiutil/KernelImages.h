// Attaching and detaching by the kernel's own calls.
#pragma once

#include <map>

#include "platform/linux/tools/hdiutil/ImageControl.h"

namespace quillmont {

class KernelImages : public ImageControl {
 public:
  Result<std::string> deviceOf(const ImageFile& image) override;
  Result<std::string> setUp(const ImageFile& image) override;
  Result<std::string> mount(const std::string& loopName, const ImageVolume& volume,
                            const std::string& place,
                            const std::vector<std::string>& taken) override;
  UnmountOutcome unmount(const VolumeMount& volume, Unmounting manner) override;
  void releaseWithLastUnmount(const std::string& loopName) override;
  void release(const LoopDevice& loop) override;

 private:
  std::map<std::string, Descriptor> open_;
};

}  // namespace quillmont
