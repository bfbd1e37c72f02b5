#include "monitor/QuillmontDaemon.h"

#include "monitor/idle_time.h"
#include "monitor/open_files.h"
#include "settings/ConfigManager.h"

namespace quillmont {
namespace {

constexpr double kScanInterval = 5.0;
constexpr double kIdleUpdateInterval = 1.0;

}  // namespace

QuillmontDaemon::QuillmontDaemon(const Host& host, ConfigManager& config)
    : host_(host),
      config_(config),
      mountedImages_(*this, {}),
      queue_(host.queues.makeBackgroundQueue("com.norwaldex.quillmont.daemon")),
      ignoredPrefixes_(ignoredServicePrefixes()) {}

QuillmontDaemon::~QuillmontDaemon() = default;

const std::vector<DiskImage>& QuillmontDaemon::mountedImages() const {
  return mountedImages_.value();
}

Subscription QuillmontDaemon::observeMountedImages(
    std::function<void(const std::vector<DiskImage>&)> observer) {
  return mountedImages_.observe(std::move(observer));
}

void QuillmontDaemon::start() {
  timer_.reset();
  uiTimer_.reset();
  timer_ = host_.mainRunLoop.scheduleRepeatingTimer(kScanInterval, [weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->tick();
  });
  uiTimer_ =
      host_.mainRunLoop.scheduleRepeatingTimer(kIdleUpdateInterval, [weak = weak_from_this()] {
        if (const auto self = weak.lock()) self->updateIdleTimesAndCheckTimeout();
      });
  tick();
}

void QuillmontDaemon::stop() {
  timer_.reset();
  uiTimer_.reset();
}

void QuillmontDaemon::observeVolumes() {
  for (const auto event : {VolumeEvent::didMount, VolumeEvent::didUnmount}) {
    host_.workspace.observeVolumes(event, [weak = weak_from_this()](VolumeEvent happened) {
      if (const auto self = weak.lock()) self->handleVolumeNotification(happened);
    });
  }
}

void QuillmontDaemon::handleVolumeNotification(VolumeEvent) {
  tick();
}

void QuillmontDaemon::updateIdleTimesAndCheckTimeout() {
  const auto now = host_.clock.now();
  std::vector<DiskImage> remaining;
  remaining.reserve(mountedImages().size());
  for (const auto& image : mountedImages()) {
    remaining.push_back(image);
    if (!updateIdleTime(remaining.back(), now)) continue;
    requestEjection(image);
    remaining.pop_back();
  }
  mountedImages_.set(std::move(remaining));
}

/// Whether the image has timed out.
bool QuillmontDaemon::updateIdleTime(DiskImage& image, TimePoint now) {
  if (image.inUse || image.isExcluded) return false;
  const auto mountTime = mountTimes_.find(image.imagePath);
  const auto lastUse = lastUseTimes_.find(image.imagePath);
  if (mountTime == mountTimes_.end() || lastUse == lastUseTimes_.end()) return false;
  image.idleSeconds = idleSecondsAt(now, mountTime->second, lastUse->second);
  return hasTimedOut(config_.isEnabled(), config_.timeoutSeconds(), image.idleSeconds);
}

void QuillmontDaemon::requestEjection(const DiskImage& image) {
  queue_->async(
      [weak = weak_from_this(), mountPoint = image.mountPoint, volumeName = image.volumeName] {
        if (const auto self = weak.lock()) self->eject(mountPoint, volumeName);
      });
  const std::lock_guard guard(timesLock_);
  mountTimes_.erase(image.imagePath);
  lastUseTimes_.erase(image.imagePath);
}

}  // namespace quillmont
