// The scan cycle: one whole look at the system, on the monitor queue.

#include <unordered_set>

#include "monitor/QuillmontDaemon.h"
#include "monitor/idle_time.h"
#include "platform/Application.h"
#include "platform/Bundle.h"
#include "platform/FileManager.h"
#include "platform/Log.h"
#include "platform/UserDefaults.h"
#include "settings/ConfigManager.h"

namespace quillmont {

void QuillmontDaemon::tick() {
  queue_->async([weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->runCycle();
  });
}

void QuillmontDaemon::runCycle() {
  if (cleanUpIfUninstalled()) return;
  const auto entries = scanMountedImages();
  auto times = copyTimes();
  const auto myPid = std::to_string(host_.processIdentifier);
  const auto now = host_.clock.now();

  std::vector<DiskImage> images;
  images.reserve(entries.size());
  std::unordered_set<std::string_view> attached;
  for (const auto& entry : entries) {
    images.push_back(examine(entry, now, myPid, times));
    attached.insert(entry.imagePath);
  }
  std::erase_if(times.mountTimes, [&](const auto& known) {
    if (attached.contains(known.first)) return false;
    times.lastUseTimes.erase(known.first);
    return true;
  });
  publish(std::move(times), std::move(images));
}

/// Whether the program itself has been moved to the Trash or deleted. It then takes its login item
/// and its settings with it and asks the application to terminate.
bool QuillmontDaemon::cleanUpIfUninstalled() {
  const auto bundlePath = host_.bundle.path();
  const bool isTrash = bundlePath.find("/.Trash/") != std::string::npos;
  const bool exists = host_.files.exists(bundlePath);
  if (!isTrash && exists) return false;
  host_.log.write(std::string("Quillmont has been moved to Trash or deleted (isTrash: ") +
                  boolText(isTrash) + ", exists: " + boolText(exists) +
                  "). Cleaning up LaunchAgent and exiting...");
  isCleaningUp_ = true;
  ConfigManager::cleanLaunchAgent(host_);
  host_.defaults.removePersistentDomain(kBundleIdentifier);
  host_.mainRunLoop.async([&application = host_.application] { application.terminate(); });
  return true;
}

void QuillmontDaemon::finishCleanUp() {
  if (!isCleaningUp_) return;
  ConfigManager::deleteLaunchAgent(host_);
  host_.defaults.removePersistentDomain(kBundleIdentifier);
}

QuillmontDaemon::ImageTimes QuillmontDaemon::copyTimes() {
  const std::lock_guard guard(timesLock_);
  return {mountTimes_, lastUseTimes_};
}

DiskImage QuillmontDaemon::examine(const ScanEntry& entry, TimePoint now, const std::string& myPid,
                                   ImageTimes& times) {
  const bool isExcluded = config_.isExcluded(entry.imagePath);
  auto mountTime = times.mountTimes.find(entry.imagePath);
  if (mountTime == times.mountTimes.end()) {
    mountTime = times.mountTimes.emplace(entry.imagePath, getMountTime(entry.devEntry)).first;
  }
  auto use = checkInUse(entry.mountPoint, myPid);
  auto& lastUse = times.lastUseTimes.try_emplace(entry.imagePath, mountTime->second).first->second;
  if (use.inUse) lastUse = now;
  return DiskImage(entry.imagePath, entry.mountPoint, lastPathComponent(entry.mountPoint),
                   idleSecondsAt(now, mountTime->second, lastUse), use.inUse,
                   std::move(use.activeProcesses), isExcluded);
}

/// Hands the result to the main thread, where it replaces what stands there.
void QuillmontDaemon::publish(ImageTimes times, std::vector<DiskImage> images) {
  host_.mainRunLoop.async(
      [self = shared_from_this(), times = std::move(times), images = std::move(images)]() mutable {
        {
          const std::lock_guard guard(self->timesLock_);
          self->mountTimes_ = std::move(times.mountTimes);
          self->lastUseTimes_ = std::move(times.lastUseTimes);
        }
        self->mountedImages_.set(std::move(images));
      });
}

}  // namespace quillmont
