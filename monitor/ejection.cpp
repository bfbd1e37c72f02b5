// Detaching an image, making sure that it is gone, and telling the user.

#include <algorithm>

#include "monitor/QuillmontDaemon.h"
#include "monitor/notification_script.h"
#include "platform/Log.h"
#include "platform/ProcessLauncher.h"
#include "platform/fatal.h"

namespace quillmont {
namespace {

constexpr int kVerificationScans = 6;
constexpr std::chrono::microseconds kVerificationPause{500'000};
constexpr int kPendingEjectLooks = 30;
constexpr std::chrono::microseconds kPendingEjectPause{100'000};

}  // namespace

void QuillmontDaemon::eject(const std::string& mountPoint, const std::string& volumeName) {
  countEject(+1);
  detachAndVerify(mountPoint, volumeName);
  countEject(-1);
}

void QuillmontDaemon::detachAndVerify(const std::string& mountPoint,
                                      const std::string& volumeName) {
  auto tool = host_.processes.launch(
      {.path = host_.tools.diskImageTool, .arguments = {"detach", mountPoint, "-force"}});
  if (!tool) {
    host_.log.write("Exception ejecting " + mountPoint + ": " + tool.errorText());
    return;
  }
  const int status = (*tool)->waitUntilExit();
  if (status != 0) {
    host_.log.write("Failed to eject: " + mountPoint + ". Code: process termination status " +
                    std::to_string(status));
    return;
  }
  if (!isGoneAfterDetach(mountPoint)) {
    host_.log.write(
        "Warning: hdiutil detach returned 0, but mount point is still attached (possible "
        "unmount-only state): " +
        mountPoint);
    return;
  }
  host_.log.write("Successfully ejected and verified detached: " + mountPoint);
  notifyEjected(volumeName);
}

/// The tool's success is not trusted: an image counts as gone when a scan no longer lists it.
bool QuillmontDaemon::isGoneAfterDetach(const std::string& mountPoint) {
  for (int scan = 0; scan < kVerificationScans; ++scan) {
    host_.clock.sleep(kVerificationPause);
    const auto entries = scanMountedImages();
    const bool listed = std::any_of(entries.begin(), entries.end(), [&](const ScanEntry& entry) {
      return entry.mountPoint == mountPoint;
    });
    if (!listed) return true;
  }
  return false;
}

/// Neither waited for nor missed: a notification that cannot be shown changes nothing.
void QuillmontDaemon::notifyEjected(const std::string& volumeName) {
  static_cast<void>(
      host_.processes.launch({.path = host_.tools.scriptRunner,
                              .arguments = {"-e", ejectionNotificationScript(volumeName)}}));
}

void QuillmontDaemon::countEject(std::int64_t change) {
  const std::lock_guard guard(ejectLock_);
  std::int64_t count = 0;
  if (__builtin_add_overflow(activeEjectCount_, change, &count) || count < 0) {
    fatalError(host_.log, "The count of ejections in progress left its range");
  }
  activeEjectCount_ = count;
}

void QuillmontDaemon::waitForPendingEjects() {
  for (int look = 0; look < kPendingEjectLooks; ++look) {
    {
      const std::lock_guard guard(ejectLock_);
      if (activeEjectCount_ == 0) return;
    }
    host_.clock.sleep(kPendingEjectPause);
  }
}

void QuillmontDaemon::userForceEject(const std::string& mountPoint, const std::string& volumeName) {
  queue_->async([weak = weak_from_this(), mountPoint, volumeName] {
    if (const auto self = weak.lock()) self->eject(mountPoint, volumeName);
    if (const auto self = weak.lock()) self->tick();
  });
}

}  // namespace quillmont
