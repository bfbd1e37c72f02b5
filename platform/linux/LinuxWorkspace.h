// Volumes that come and go, from the kernel's mount table, and running instances, from lock files.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "platform/Log.h"
#include "platform/Workspace.h"
#include "platform/linux/EventLoop.h"
#include "platform/linux/mount_table.h"
#include "platform/posix/Descriptor.h"

namespace quillmont {

/// A mounted volume: the mount's identifier, where it is and what it shows. The kernel gives an
/// identifier away again as soon as it is free.
using MountedVolume = std::tuple<int, std::string, std::string>;

/// Those of `mounts` that are volumes to the user `user`: mounted below /media/<user>/,
/// /run/media/<user>/ or /Volumes/. Containers and packages mount by the dozen elsewhere, and
/// nobody is woken for them.
std::set<MountedVolume> mountedVolumes(const std::vector<Mount>& mounts, const std::string& user);

/// Main thread.
class LinuxWorkspace : public Workspace {
 public:
  /// `loop` and `log` must outlive the workspace. `whenAlone` is called once, by the first
  /// runningApplications() that finds no other instance of the program: from there on this
  /// process is the one that may take the user's runtime folder into use.
  LinuxWorkspace(EventLoop& loop, Log& log, std::function<void()> whenAlone);

  void observeVolumes(VolumeEvent event, VolumeObserver observer) override;

  /// Only the program's own identifier is known; there are no applications under any other.
  std::vector<std::int32_t> runningApplications(const std::string& bundleIdentifier) override;

 private:
  void startWatching();
  void mountTableChanged();
  void tell(VolumeEvent event);
  std::set<MountedVolume> readVolumes();

  EventLoop& loop_;
  Log& log_;
  std::function<void()> whenAlone_;
  std::string user_;
  bool watching_ = false;
  EventLoop::Watch watch_;
  std::set<MountedVolume> volumes_;
  std::vector<std::pair<VolumeEvent, VolumeObserver>> observers_;
  Descriptor registration_;
};

}  // namespace quillmont
