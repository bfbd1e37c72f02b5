#include "platform/linux/tools/hdiutil/UDisksImages.h"

#include <unistd.h>

#include <chrono>
#include <thread>

#include "platform/linux/tools/hdiutil/KernelImages.h"
#include "platform/linux/tools/hdiutil/loop_control.h"

namespace quillmont {
namespace {

using namespace std::chrono_literals;

/// How long the service may take to look at a new device.
constexpr auto kLongestLook = 5s;

}  // namespace

bool UDisksImages::carries(const LoopDevice& loop, const ImageFile& image) {
  struct stat status = {};
  return stat(loop.backingFile.c_str(), &status) == 0 && status.st_dev == image.status.st_dev &&
         status.st_ino == image.status.st_ino;
}

Result<std::string> UDisksImages::setUp(const ImageFile& image) {
  return service_.setUpLoop(image.file.get(), image.readOnly);
}

Result<std::string> UDisksImages::mount(const std::string& loopName, const ImageVolume& volume,
                                        const std::string&, const std::vector<std::string>&) {
  const std::string device = deviceName(loopName, volume.partition);
  const auto end = std::chrono::steady_clock::now() + kLongestLook;
  while (!service_.canMount(device) && std::chrono::steady_clock::now() < end) {
    std::this_thread::sleep_for(50ms);
  }
  return service_.mount(device);
}

UnmountOutcome UDisksImages::unmount(const VolumeMount& volume, Unmounting manner) {
  const std::string device = volume.deviceNode.substr(volume.deviceNode.rfind('/') + 1);
  const auto done = service_.unmount(device, manner == Unmounting::lazily);
  if (done) return {true, false, {}};
  return {false, service_.wasBusy(), done.errorText()};
}

void UDisksImages::releaseWithLastUnmount(const std::string& loopName) {
  // A refusal costs nothing: detaching deletes the device in any case.
  static_cast<void>(static_cast<bool>(service_.setAutoclear(loopName)));
}

void UDisksImages::release(const LoopDevice& loop) {
  if (!isAttached(loop)) return;
  if (service_.setAutoclear(loop.name) && !isAttached(loop)) return;
  static_cast<void>(static_cast<bool>(service_.deleteLoop(loop.name)));
}

Result<std::unique_ptr<ImageControl>> imageControl() {
  if (geteuid() == 0) return std::unique_ptr<ImageControl>(std::make_unique<KernelImages>());
  auto service = UDisks::connect();
  if (!service) return Error{service.errorText()};
  return std::unique_ptr<ImageControl>(std::make_unique<UDisksImages>(std::move(*service)));
}

}  // namespace quillmont
