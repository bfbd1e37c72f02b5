// The monitor as it is meant to be, written once more and as plainly as possible: no threads, no
// timers but two numbers, no code of the monitor itself.
#pragma once

#include <deque>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tests/unit/monitor_model/Trace.h"
#include "tests/unit/monitor_model/World.h"

namespace quillmont::testing {

class ReferenceMonitor {
 public:
  /// A monitor that has just been made, at the time `now`.
  explicit ReferenceMonitor(TimePoint now);

  void act(const Step& step);
  Standing standing() const;

  std::vector<Deed> trace;

 private:
  using Times = std::map<std::string, TimePoint>;

  struct Queued {
    enum { cycle, ejection, userEjection } what;
    std::string mountPoint = {};
    std::string volumeName = {};
  };
  struct HandedOver {
    bool terminates;
    Times mountTimes = {};
    Times lastUseTimes = {};
    std::vector<DiskImage> images = {};
  };
  struct PeriodicTimer {
    TimePoint::duration interval;
    TimePoint::duration due{};
  };

  void actOnMainThread(const Step& step);
  void passTime(TimePoint::duration duration);
  void moveTo(TimePoint::duration elapsed);
  void start();
  void quit();
  void letGo();
  void tick();
  void updateIdleTimes();
  bool runMain();
  bool runQueue();
  bool exists() const;

  void cycle();
  DiskImage examine(const FakeDiskImages::Image& image, TimePoint cycleTime, Times& mountTimes,
                    Times& lastUseTimes);
  bool programIsGone();
  std::vector<FakeDiskImages::Image> scan();
  TimePoint mountTimeOf(const std::string& node);
  std::vector<std::string> usersOf(const std::string& mountPoint);
  void eject(const std::string& mountPoint, const std::string& volumeName);
  void detach(const std::string& mountPoint, const std::string& volumeName);
  bool isGone(const std::string& mountPoint);
  void notify(const std::string& volumeName);
  void waitForPendingEjects();

  void log(const std::string& line);
  void run(const std::string& command);
  void sleep(std::chrono::microseconds duration);
  void interrupt();
  void assign(std::vector<DiskImage> images);

  World world_;
  TimePoint now_;
  TimePoint::duration elapsed_{};  ///< since the start, by the timers
  PeriodicTimer scanTimer_{seconds(5)};
  PeriodicTimer idleTimer_{seconds(1)};
  bool timersRun_ = false;
  bool isInterrupted_ = false;

  bool isEnabled_ = true;
  double timeoutSeconds_ = 900;
  std::set<std::string> excluded_;

  std::vector<DiskImage> mountedImages_;
  Times mountTimes_;
  Times lastUseTimes_;
  int activeEjectCount_ = 0;
  int terminations_ = 0;

  bool isOwned_ = true;
  int running_ = 0;  ///< tasks of the queue that hold the monitor
  std::deque<Queued> queue_;
  std::deque<HandedOver> handedOver_;
};

}  // namespace quillmont::testing
