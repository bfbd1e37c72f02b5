#include "platform/linux/LinuxWorkspace.h"

#include <unistd.h>

#include <algorithm>
#include <string_view>
#include <utility>

#include "platform/Host.h"
#include "platform/linux/running_instances.h"
#include "platform/linux/user_folders.h"
#include "platform/linux/volume_paths.h"

namespace quillmont {
namespace {

/// Whether `volumes` has one that `others` lacks.
bool hasMore(const std::set<MountedVolume>& volumes, const std::set<MountedVolume>& others) {
  return !std::includes(others.begin(), others.end(), volumes.begin(), volumes.end());
}

}  // namespace

std::set<MountedVolume> mountedVolumes(const std::vector<Mount>& mounts, const std::string& user) {
  std::set<MountedVolume> result;
  for (const auto& mount : mounts) {
    if (isVolumeOfUser(mount.mountPoint, user)) {
      result.emplace(mount.id, mount.mountPoint, mount.source);
    }
  }
  return result;
}

LinuxWorkspace::LinuxWorkspace(EventLoop& loop, Log& log, std::function<void()> whenAlone)
    : loop_(loop), log_(log), whenAlone_(std::move(whenAlone)), user_(userName()) {}

void LinuxWorkspace::observeVolumes(VolumeEvent event, VolumeObserver observer) {
  observers_.emplace_back(event, std::move(observer));
  if (!std::exchange(watching_, true)) startWatching();
}

/// Watching begins before the table is read, so that no change falls in between.
void LinuxWorkspace::startWatching() {
  auto watch = loop_.watchAnnouncements(kMountTable, [this] { mountTableChanged(); });
  if (!watch) {
    log_.write("Cannot watch for volumes: " + watch.errorText());
    return;
  }
  watch_ = std::move(*watch);
  volumes_ = readVolumes();
}

void LinuxWorkspace::mountTableChanged() {
  auto now = readVolumes();
  const bool mounted = hasMore(now, volumes_);
  const bool unmounted = hasMore(volumes_, now);
  volumes_ = std::move(now);
  if (unmounted) tell(VolumeEvent::didUnmount);
  if (mounted) tell(VolumeEvent::didMount);
}

void LinuxWorkspace::tell(VolumeEvent event) {
  const auto observers = observers_;  // an observer may add another one
  for (const auto& [wanted, observer] : observers) {
    if (wanted == event) observer(event);
  }
}

/// A table that cannot be read has not changed, as far as anybody knows.
std::set<MountedVolume> LinuxWorkspace::readVolumes() {
  const auto mounts = readMountTable();
  if (mounts) return mountedVolumes(*mounts, user_);
  log_.write("Cannot read the mounted volumes: " + mounts.errorText());
  return volumes_;
}

std::vector<std::int32_t> LinuxWorkspace::runningApplications(const std::string& bundleIdentifier) {
  if (bundleIdentifier != kBundleIdentifier) return {};
  const auto folder = runtimeFolder();
  if (!folder) {
    log_.write("Cannot look for other instances: " + folder.errorText());
    return {getpid()};
  }
  auto instances = runningInstances(*folder, registration_, log_);
  if (registration_) {
    if (const auto act = std::exchange(whenAlone_, nullptr)) act();
  }
  return instances;
}

}  // namespace quillmont
