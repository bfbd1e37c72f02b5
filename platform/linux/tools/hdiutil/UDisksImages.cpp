#include "platform/linux/tools/hdiutil/UDisksImages.h"

#include <unistd.h>

#include <chrono>
#include <thread>

#include "platform/linux/tools/hdiutil/loop_control.h"
#include "platform/linux/tools/hdiutil/loop_search.h"

namespace quillmont {
namespace {

using namespace std::chrono_literals;

/// How long the service may take to look at a new device.
constexpr auto kLongestLook = 5s;

/// Where somebody else, an automounter say, has mounted the device; empty if nobody has.
std::string placeOfDevice(const std::string& device) {
  const auto mounts = readMountTable();
  std::string place;
  for (const auto& volume : mounts ? imageMounts(*mounts) : std::vector<VolumeMount>()) {
    if (isVolume(volume.mount) && kernelName(volume.deviceNode) == device) {
      place = volume.mount.mountPoint;
    }
  }
  return place;
}

}  // namespace

Result<std::string> UDisksImages::deviceOf(const ImageFile& image) {
  return findLoopOf(image, attachedLoopDevices());
}

Result<std::string> UDisksImages::setUp(const ImageFile& image) {
  auto loopName = service_.setUpLoop(image.file.get(), image.readOnly);
  if (loopName) setUp_ = *loopName;
  return loopName;
}

Result<std::string> UDisksImages::mount(const std::string& loopName, const ImageVolume& volume,
                                        const std::string&, const std::vector<std::string>&) {
  const std::string device = deviceName(loopName, volume.partition);
  const auto end = std::chrono::steady_clock::now() + kLongestLook;
  while (!service_.canMount(device) && std::chrono::steady_clock::now() < end) {
    std::this_thread::sleep_for(50ms);
  }
  auto place = service_.mount(device);
  if (place || !service_.wasMountedAlready()) return place;
  const auto there = placeOfDevice(device);
  return there.empty() ? place : there;
}

UnmountOutcome UDisksImages::unmount(const VolumeMount& volume, Unmounting manner) {
  if (const auto ours = checkOwner(volume.loopName); !ours) return {false, false, ours.errorText()};
  const auto done = service_.unmount(kernelName(volume.deviceNode), manner == Unmounting::lazily);
  if (done) return {true, false, {}};
  return {false, service_.wasBusy(), done.errorText()};
}

void UDisksImages::releaseWithLastUnmount(const std::string& loopName) {
  // A refusal costs nothing: detaching deletes the device in any case.
  static_cast<void>(static_cast<bool>(service_.setAutoclear(loopName)));
}

void UDisksImages::release(const LoopDevice& loop) {
  if (!isAttached(loop) || !checkOwner(loop.name)) return;
  if (service_.setAutoclear(loop.name) && !isAttached(loop)) return;
  static_cast<void>(static_cast<bool>(service_.deleteLoop(loop.name)));
}

Result<void> UDisksImages::checkOwner(const std::string& loopName) {
  if (loopName == setUp_) return {};
  const auto owner = service_.ownerOf(loopName);
  if (!owner) return Error{owner.errorText()};
  return *owner == getuid() ? Result<void>() : Error{"attached by another user"};
}

}  // namespace quillmont
