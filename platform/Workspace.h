// What the desktop session tells: volumes that come and go, and running applications.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace quillmont {

enum class VolumeEvent { didMount, didUnmount };

using VolumeObserver = std::function<void(VolumeEvent)>;

/// Main thread.
class Workspace {
 public:
  virtual ~Workspace() = default;

  /// Calls `observer` on the main thread after a volume was mounted or unmounted, for the rest of
  /// the process's life. Several changes at once may come as one call.
  virtual void observeVolumes(VolumeEvent event, VolumeObserver observer) = 0;

  /// Process identifiers of the applications of this user that run under `bundleIdentifier`,
  /// the calling one among them, oldest first.
  virtual std::vector<std::int32_t> runningApplications(const std::string& bundleIdentifier) = 0;
};

}  // namespace quillmont
