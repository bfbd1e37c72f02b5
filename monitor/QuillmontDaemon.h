// The monitor: which disk images are mounted, how long each has been idle, and the ejection of
// those that have been idle for the user's timeout.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "monitor/DiskImage.h"
#include "monitor/attached_images.h"
#include "platform/Clock.h"
#include "platform/Host.h"
#include "platform/Observable.h"
#include "platform/RunLoop.h"
#include "platform/SerialQueue.h"
#include "platform/Workspace.h"

namespace quillmont {

class ConfigManager;

/// What an in-use check found. `inUse` is true exactly when `activeProcesses` is not empty.
struct InUse {
  bool inUse;
  std::vector<std::string> activeProcesses;
};

/// The engine of the program, one object for the life of the process.
///
/// Two activities run side by side. Every five seconds, and whenever a volume comes or goes, a scan
/// cycle on the monitor's own serial queue lists the attached images and checks each for users; its
/// result is handed to the main thread. Every second the main thread recomputes the idle times and
/// requests the ejection of the images that have timed out. Ejections run on the serial queue as
/// well, so none ever runs during a cycle.
///
/// No operation raises an error: a failure is one log line and a neutral fallback.
class QuillmontDaemon : public ObservableObject,
                        public std::enable_shared_from_this<QuillmontDaemon> {
 public:
  /// The one monitor of the process on the real host, made and started on first use. Main thread.
  static QuillmontDaemon& shared();

  /// Makes a monitor, or a class derived from it, and starts it: both timers run, the first cycle
  /// is queued, and volume events are observed. Main thread.
  template <class Monitor = QuillmontDaemon>
  static std::shared_ptr<Monitor> make(const Host& host, ConfigManager& config) {
    std::shared_ptr<Monitor> monitor(new Monitor(host, config));
    monitor->start();
    monitor->observeVolumes();
    return monitor;
  }

  virtual ~QuillmontDaemon();
  QuillmontDaemon(const QuillmontDaemon&) = delete;
  QuillmontDaemon& operator=(const QuillmontDaemon&) = delete;

  /// The mounted images in the order of the last scan. Main thread. Every assignment is announced
  /// by objectWillChange() before, and by the observers of the values after it, even when nothing
  /// has changed.
  virtual const std::vector<DiskImage>& mountedImages() const;
  virtual Subscription observeMountedImages(
      std::function<void(const std::vector<DiskImage>&)> observer);

  /// (Re)starts both timers and queues one cycle. Main thread.
  virtual void start();

  /// Stops both timers. Cycles that are queued already still run, and volume events still queue
  /// new ones. Main thread. Due before the last owner lets go: the monitor may then be destroyed
  /// on its own queue, where a running timer must not be touched.
  virtual void stop();

  /// Deletes the login item and the settings if a cycle has begun to, having found the program
  /// moved to the Trash or deleted: unloading the login item may be what ends the process, in the
  /// middle of that cycle. Main thread, while the application terminates.
  void finishCleanUp();

 protected:
  QuillmontDaemon(const Host& host, ConfigManager& config);

  /// Queues one scan cycle and returns. Requests are not merged. Any thread.
  virtual void tick();

  /// Recomputes the idle time of every image that is neither in use nor excluded, and requests the
  /// ejection of those that have timed out. Main thread, once a second.
  virtual void updateIdleTimesAndCheckTimeout();

  /// Which processes, other than `myPid` and the ignored services, hold anything open on the volume
  /// mounted at `mountPoint`. Blocks for as long as the open-files tool runs. A check that fails
  /// answers "not in use". Monitor queue.
  virtual InUse checkInUse(const std::string& mountPoint, const std::string& myPid);

 public:
  /// Detaches the image mounted at `mountPoint`, verifies by rescanning that it is gone, and posts
  /// the notification. Blocks for the detach and up to about three seconds more. Any thread; in the
  /// program always the monitor queue.
  virtual void eject(const std::string& mountPoint, const std::string& volumeName);

  /// Returns when no ejection is in progress, or after about three seconds. An ejection that is
  /// queued but has not begun does not count. Main thread, while the application terminates.
  virtual void waitForPendingEjects();

  /// The user's own request: ejects whatever the settings say, then queues a cycle. Returns at
  /// once. Any thread.
  virtual void userForceEject(const std::string& mountPoint, const std::string& volumeName);

 protected:
  /// When the image behind the device node was mounted, from the node's time stamps; the current
  /// time where they cannot be had. Monitor queue.
  virtual TimePoint getMountTime(const std::string& devEntry);

  /// The attached images with a volume below /Volumes/, in the disk-image tool's order. Blocks for
  /// as long as the tool runs. Empty when the scan fails. Monitor queue.
  std::vector<ScanEntry> scanMountedImages();

  /// Queues a cycle, whatever the event says. Main thread.
  void handleVolumeNotification(VolumeEvent event);

 private:
  using Times = std::unordered_map<std::string, TimePoint>;

  /// A cycle's copies of the two maps.
  struct ImageTimes {
    Times mountTimes;
    Times lastUseTimes;
  };

  void observeVolumes();
  void runCycle();
  bool cleanUpIfUninstalled();
  ImageTimes copyTimes();
  DiskImage examine(const ScanEntry& entry, TimePoint now, const std::string& myPid,
                    ImageTimes& times);
  void publish(ImageTimes times, std::vector<DiskImage> images);
  bool updateIdleTime(DiskImage& image, TimePoint now);
  void requestEjection(const DiskImage& image);
  void detachAndVerify(const std::string& mountPoint, const std::string& volumeName);
  bool isGoneAfterDetach(const std::string& mountPoint);
  void notifyEjected(const std::string& volumeName);
  void countEject(std::int64_t change);

  const Host host_;
  ConfigManager& config_;

  Published<std::vector<DiskImage>> mountedImages_;
  std::unique_ptr<Timer> timer_;
  Times mountTimes_;      ///< by image path: when each known image was mounted
  Times lastUseTimes_;    ///< by image path, the same keys: when it was last seen in use
  std::mutex timesLock_;  ///< the main thread writes the two maps, cycles copy them on the queue
  std::unique_ptr<SerialQueue> queue_;
  std::int64_t activeEjectCount_ = 0;
  std::mutex ejectLock_;
  std::unique_ptr<Timer> uiTimer_;
  std::atomic<bool> isCleaningUp_ = false;
  const std::vector<std::string> ignoredPrefixes_;
};

}  // namespace quillmont
