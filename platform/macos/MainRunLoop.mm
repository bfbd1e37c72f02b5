#include "platform/macos/MainRunLoop.h"

#import <AppKit/AppKit.h>

#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <utility>

#include "platform/macos/Call.h"
#include "platform/macos/Retained.h"
#include "platform/macos/served_modes.h"
#include "platform/posix/timer_interval.h"

namespace quillmont {

/// The queue is the program's own, and the run loop is only rung: once at any time while there are
/// tasks. One that serves the run loop itself finds the bell rung already for the next.
struct MainRunLoop::Tasks {
  std::mutex lock;
  std::deque<Task> waiting;
  Retained<QMCall*> bell;

  void ring() {
    [bell performSelectorOnMainThread:@selector(run)
                           withObject:nil
                        waitUntilDone:NO
                                modes:servedModes()];
  }

  void add(Task task) {
    const std::lock_guard guard(lock);
    waiting.push_back(std::move(task));
    if (waiting.size() == 1) ring();
  }

  std::optional<Task> take() {
    const std::lock_guard guard(lock);
    if (waiting.empty()) return std::nullopt;
    std::optional<Task> task(std::move(waiting.front()));
    waiting.pop_front();
    if (!waiting.empty()) ring();
    return task;
  }
};

/// The system's word that somebody is waiting for what this process does.
struct MainRunLoop::Activity {
  Retained<id> token;

  Activity() {
    @autoreleasepool {
      token = share<id>([[NSProcessInfo processInfo]
          beginActivityWithOptions:NSActivityUserInitiatedAllowingIdleSystemSleep
                            reason:@"Watching disk images"]);
    }
  }
  ~Activity() {
    if (token != nil) [[NSProcessInfo processInfo] endActivity:token];
  }
};

class MainRunLoop::LoopTimer : public Timer {
 public:
  LoopTimer(double interval, Task task, std::shared_ptr<Activity> activity)
      : activity_(std::move(activity)) {
    @autoreleasepool {
      // A state of the call's own: the task may destroy this timer.
      auto fire = [task = std::move(task), firing = false]() mutable {
        if (std::exchange(firing, true)) return;
        task();
        firing = false;
      };
      const auto call = adopt([[QMCall alloc] initWithFunction:std::move(fire)]);
      timer_ = share([NSTimer timerWithTimeInterval:interval
                                             target:call
                                           selector:@selector(fire:)
                                           userInfo:nil
                                            repeats:YES]);
      for (NSString* mode in servedModes()) [[NSRunLoop mainRunLoop] addTimer:timer_ forMode:mode];
    }
  }
  ~LoopTimer() override { invalidate(); }

  void invalidate() override {
    [timer_ invalidate];
    timer_ = {};
    activity_.reset();
  }

 private:
  Retained<NSTimer*> timer_;
  std::shared_ptr<Activity> activity_;
};

MainRunLoop::MainRunLoop() : tasks_(std::make_shared<Tasks>()) {
  auto serve = [weak = std::weak_ptr(tasks_)] {
    const auto tasks = weak.lock();
    const auto task = tasks ? tasks->take() : std::nullopt;
    if (task) (*task)();
  };
  tasks_->bell = adopt([[QMCall alloc] initWithFunction:std::move(serve)]);
}

MainRunLoop::~MainRunLoop() = default;

void MainRunLoop::async(Task task) {
  @autoreleasepool {
    tasks_->add(std::move(task));
  }
}

std::unique_ptr<Timer> MainRunLoop::scheduleRepeatingTimer(double interval, Task task) {
  auto activity = activity_.lock();
  if (!activity) activity_ = activity = std::make_shared<Activity>();
  return std::make_unique<LoopTimer>(boundedInterval(interval), std::move(task),
                                     std::move(activity));
}

}  // namespace quillmont
