#include "platform/linux/tools/hdiutil/UDisksImages.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <thread>

#include "platform/linux/tools/hdiutil/loop_control.h"
#include "platform/linux/tools/hdiutil/loop_search.h"
#include "platform/linux/user_folders.h"
#include "platform/linux/volume_paths.h"

namespace quillmont {
namespace {

using namespace std::chrono_literals;

/// How long the service may take to look at a new device.
constexpr auto kLongestLook = 5s;

/// The service takes a device whose image file was deleted for somebody else's set-up, and forgets
/// who set it up.
bool isDeleted(const std::string& loopName) {
  const auto loops = attachedLoopDevices();
  return std::any_of(loops.begin(), loops.end(), [&loopName](const LoopDevice& loop) {
    return loop.name == loopName && loop.deleted;
  });
}

/// Whether the volume lies where the desktop mounts for this user alone.
bool isMountedForUs(const Mount& mount) {
  return isVolumeOfUser(mount.mountPoint, userName());
}

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
  if (loopName) ours_.push_back(*loopName);
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
  if (const auto ours = checkOwner(volume); !ours) return {false, false, ours.errorText()};
  const auto done = service_.unmount(kernelName(volume.deviceNode), manner == Unmounting::lazily);
  if (done) return {true, false, {}};
  return {false, service_.wasBusy(), done.errorText()};
}

void UDisksImages::releaseWithLastUnmount(const std::string& loopName) {
  // A refusal costs nothing: detaching deletes the device in any case.
  static_cast<void>(static_cast<bool>(service_.setAutoclear(loopName)));
}

void UDisksImages::release(const LoopDevice& loop) {
  if (!isAttached(loop) || !isOurs(loop.name)) return;
  if (service_.setAutoclear(loop.name) && !isAttached(loop)) return;
  static_cast<void>(static_cast<bool>(service_.deleteLoop(loop.name)));
}

Result<void> UDisksImages::checkOwner(const VolumeMount& volume) {
  if (isOurs(volume.loopName)) return {};
  const auto owner = service_.ownerOf(volume.loopName);
  if (!owner) return Error{owner.errorText()};
  const bool forgotten = *owner == 0 && isDeleted(volume.loopName) && isMountedForUs(volume.mount);
  if (!forgotten) return Error{"attached by another user"};
  ours_.push_back(volume.loopName);
  return {};
}

bool UDisksImages::isOurs(const std::string& loopName) {
  if (std::find(ours_.begin(), ours_.end(), loopName) != ours_.end()) return true;
  const auto owner = service_.ownerOf(loopName);
  if (!owner || *owner != getuid()) return false;
  ours_.push_back(loopName);
  return true;
}

}  // namespace quillmont
