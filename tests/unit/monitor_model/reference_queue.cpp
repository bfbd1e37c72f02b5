// The queue's side: scan cycles and ejections, one after another.

#include <algorithm>

#include "tests/unit/monitor_model/ReferenceMonitor.h"

namespace quillmont::testing {

bool ReferenceMonitor::runQueue() {
  if (queue_.empty()) return false;
  const auto task = queue_.front();
  queue_.pop_front();
  if (!exists()) return true;
  ++running_;
  if (task.what == Queued::cycle) {
    cycle();
  } else {
    eject(task.mountPoint, task.volumeName);
  }
  --running_;
  if (task.what == Queued::userEjection && exists()) tick();
  return true;
}

void ReferenceMonitor::cycle() {
  if (programIsGone()) return;
  const auto entries = scan();
  auto mountTimes = mountTimes_;
  auto lastUseTimes = lastUseTimes_;
  const auto cycleTime = now_;
  std::vector<DiskImage> images;
  for (const auto& entry : entries) {
    images.push_back(examine(entry, cycleTime, mountTimes, lastUseTimes));
  }
  std::set<std::string> paths;
  for (const auto& entry : entries) paths.insert(entry.imagePath);
  for (auto known = mountTimes.begin(); known != mountTimes.end();) {
    if (paths.count(known->first) > 0) {
      ++known;
      continue;
    }
    lastUseTimes.erase(known->first);
    known = mountTimes.erase(known);
  }
  handedOver_.push_back({false, mountTimes, lastUseTimes, images});
}

DiskImage ReferenceMonitor::examine(const FakeDiskImages::Image& image, TimePoint cycleTime,
                                    Times& mountTimes, Times& lastUseTimes) {
  const auto& path = image.imagePath;
  const bool isExcluded = excluded_.count(path) > 0;
  if (mountTimes.count(path) == 0) mountTimes[path] = mountTimeOf(image.devEntry);
  const auto users = usersOf(image.mountPoint);
  if (!users.empty()) {
    lastUseTimes[path] = cycleTime;
  } else if (lastUseTimes.count(path) == 0) {
    lastUseTimes[path] = mountTimes[path];
  }
  const auto reference =
      lastUseTimes[path] >= mountTimes[path] ? lastUseTimes[path] : mountTimes[path];
  const double idle = std::chrono::duration<double>(cycleTime - reference).count();
  const auto& known = *std::find_if(
      catalogue().begin(), catalogue().end(),
      [&](const CatalogueEntry& entry) { return entry.mountPoint == image.mountPoint; });
  return DiskImage(path, image.mountPoint, known.volumeName, idle, !users.empty(), users,
                   isExcluded);
}

bool ReferenceMonitor::programIsGone() {
  if (world_.program == ProgramPlace::installed) return false;
  const bool trashed = world_.program == ProgramPlace::trashed;
  log(std::string("Quillmont has been moved to Trash or deleted (isTrash: ") +
      (trashed ? "true, exists: true" : "false, exists: false") +
      "). Cleaning up LaunchAgent and exiting...");
  const std::string agent = "/Users/user/Library/LaunchAgents/com.norwaldex.quillmont.plist";
  run("/bin/bash -c launchctl bootout gui/501 " + agent + " 2>/dev/null || launchctl unload " +
      agent + " 2>/dev/null");
  trace.push_back({"remove the settings com.norwaldex.Quillmont"});
  handedOver_.push_back({true});
  return true;
}

std::vector<FakeDiskImages::Image> ReferenceMonitor::scan() {
  run("/usr/bin/hdiutil info -plist");
  const auto answer = world_.scan();
  if (answer == Answer::cannotStart) log("Error scanning mounted images: No such file");
  if (answer == Answer::garbage) log("Error scanning mounted images: not a property list");
  if (answer != Answer::honest) return {};
  std::vector<FakeDiskImages::Image> entries;
  std::set<std::string> seen;
  for (const auto& image : world_.attached) {
    if (image.mountPoint.substr(0, 9) != "/Volumes/") continue;
    if (seen.insert(image.imagePath).second) entries.push_back(image);
  }
  return entries;
}

TimePoint ReferenceMonitor::mountTimeOf(const std::string& node) {
  const auto found = world_.nodes.find(node);
  if (found == world_.nodes.end()) {
    log("Error getting creation date for devEntry " + node + ": No such file or directory");
    return now_;
  }
  if (found->second.modificationDate) return *found->second.modificationDate;
  if (found->second.creationDate) return *found->second.creationDate;
  return now_;
}

std::vector<std::string> ReferenceMonitor::usersOf(const std::string& mountPoint) {
  run("/usr/sbin/lsof -F cpn " + mountPoint);
  const auto answer = world_.check();
  if (answer == Answer::cannotStart) log("Error checking mount point use: No such file");
  if (answer != Answer::honest) return {};
  std::set<std::string> counted;
  for (const auto& image : world_.attached) {
    if (image.mountPoint != mountPoint) continue;
    int pid = image.userPid;
    for (const auto& user : image.users) {
      const bool isOwn = pid++ == kOwnPid;
      for (const auto& process : knownProcesses()) {
        if (process.name == user && process.counts && !isOwn) counted.insert(user);
      }
    }
  }
  return {counted.begin(), counted.end()};
}

void ReferenceMonitor::eject(const std::string& mountPoint, const std::string& volumeName) {
  trace.push_back({"eject " + mountPoint + " (" + volumeName + ")"});
  ++activeEjectCount_;
  detach(mountPoint, volumeName);
  --activeEjectCount_;
  trace.push_back({"ejected " + mountPoint});
}

void ReferenceMonitor::detach(const std::string& mountPoint, const std::string& volumeName) {
  run("/usr/bin/hdiutil detach " + mountPoint + " -force");
  const auto status = world_.detach(mountPoint);
  if (!status) {
    log("Exception ejecting " + mountPoint + ": No such file");
  } else if (*status != 0) {
    log("Failed to eject: " + mountPoint + ". Code: process termination status " +
        std::to_string(*status));
  } else if (isGone(mountPoint)) {
    log("Successfully ejected and verified detached: " + mountPoint);
    notify(volumeName);
  } else {
    log("Warning: hdiutil detach returned 0, but mount point is still attached (possible "
        "unmount-only state): " +
        mountPoint);
  }
}

bool ReferenceMonitor::isGone(const std::string& mountPoint) {
  for (int look = 1; look <= 6; ++look) {
    sleep(std::chrono::microseconds(500'000));
    bool listed = false;
    for (const auto& entry : scan()) listed = listed || entry.mountPoint == mountPoint;
    if (!listed) return true;
  }
  return false;
}

void ReferenceMonitor::notify(const std::string& volumeName) {
  std::string escaped;
  for (const char character : "\"" + volumeName + "\"") {
    escaped += character == '"' ? std::string("\\\"") : std::string(1, character);
  }
  run("/usr/bin/osascript -e display notification \"DMG 映像 " + escaped +
      " 因空闲已自动推出。\" with title \"磁盘已安全推出\" sound name \"default\"");
}

void ReferenceMonitor::log(const std::string& line) {
  trace.push_back({"log " + line});
}

void ReferenceMonitor::run(const std::string& command) {
  trace.push_back({"run " + command});
  interrupt();
}

void ReferenceMonitor::sleep(std::chrono::microseconds duration) {
  interrupt();
  trace.push_back({pauseText(duration)});
  now_ += duration;
}

void ReferenceMonitor::interrupt() {
  if (isInterrupted_) return;
  isInterrupted_ = true;
  for (const auto& step : world_.comesAbout()) act(step);
  isInterrupted_ = false;
}

}  // namespace quillmont::testing
