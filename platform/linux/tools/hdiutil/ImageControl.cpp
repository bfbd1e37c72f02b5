#include "platform/linux/tools/hdiutil/ImageControl.h"

#include <unistd.h>

#include "platform/linux/tools/hdiutil/KernelImages.h"
#include "platform/linux/tools/hdiutil/UDisksImages.h"
#include "platform/linux/tools/hdiutil/loop_control.h"

namespace quillmont {

bool ImageControl::isAttached(const LoopDevice& loop) const {
  return quillmont::isAttached(loop);
}

Result<std::unique_ptr<ImageControl>> imageControl() {
  if (geteuid() == 0) return std::unique_ptr<ImageControl>(std::make_unique<KernelImages>());
  auto service = UDisks::connect();
  if (!service) return Error{service.errorText()};
  return std::unique_ptr<ImageControl>(std::make_unique<UDisksImages>(std::move(*service)));
}

}  // namespace quillmont
