// Time, main thread and queue that move only when a test moves them.
#pragma once

#include <chrono>
#include <cmath>
#include <cstddef>
#include <deque>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/Clock.h"
#include "platform/RunLoop.h"
#include "platform/SerialQueue.h"

namespace quillmont::testing {

inline std::chrono::system_clock::duration seconds(double count) {
  return std::chrono::duration_cast<std::chrono::system_clock::duration>(
      std::chrono::nanoseconds(std::llround(count * 1e9)));
}

/// Stands still until it is moved. Sleeping moves it, and is recorded.
class ManualClock : public Clock {
 public:
  TimePoint now() const override { return now_; }
  void sleep(std::chrono::microseconds duration) override {
    if (onSleep) onSleep();
    sleeps.push_back(duration);
    now_ += duration;
  }
  void advance(std::chrono::nanoseconds duration) {
    now_ += std::chrono::duration_cast<TimePoint::duration>(duration);
  }

  std::vector<std::chrono::microseconds> sleeps;
  Task onSleep;  ///< called at the beginning of each sleep

 private:
  TimePoint now_ = TimePoint(std::chrono::hours(24 * 365 * 50));
};

/// Runs what was handed over when told to; fires its timers when time is moved through it.
class ManualRunLoop : public RunLoop {
 public:
  explicit ManualRunLoop(ManualClock& clock) : clock_(clock) {}

  void async(Task task) override { tasks_.push_back(std::move(task)); }

  std::unique_ptr<Timer> scheduleRepeatingTimer(double interval, Task task) override {
    auto state = std::make_shared<State>(
        State{seconds(interval), elapsed_ + seconds(interval), std::move(task)});
    timers_.push_back(state);
    return std::make_unique<ManualTimer>(state);
  }

  std::size_t pendingTasks() const { return tasks_.size(); }

  std::size_t scheduledTimers() const {
    std::size_t count = 0;
    for (const auto& timer : timers_) count += timer->task ? 1 : 0;
    return count;
  }

  /// Runs one task; false if there is none.
  bool runTask() {
    if (tasks_.empty()) return false;
    const auto task = std::move(tasks_.front());
    tasks_.pop_front();
    task();
    return true;
  }

  /// Runs every task that is pending, and those that they add.
  void runTasks() {
    while (runTask()) {
    }
  }

  /// Moves the clock forward, stopping at every firing that is due on the way.
  void advance(std::chrono::nanoseconds duration) {
    const auto end = elapsed_ + duration;
    while (const auto next = nextTimer(end)) {
      moveTo(next->due);
      next->due += next->interval;
      const auto task = next->task;
      task();
    }
    moveTo(end);
  }

 private:
  struct State {
    std::chrono::nanoseconds interval;
    std::chrono::nanoseconds due;
    Task task;
  };

  class ManualTimer : public Timer {
   public:
    explicit ManualTimer(std::shared_ptr<State> state) : state_(std::move(state)) {}
    ~ManualTimer() override { invalidate(); }
    void invalidate() override { state_->task = nullptr; }

   private:
    std::shared_ptr<State> state_;
  };

  std::shared_ptr<State> nextTimer(std::chrono::nanoseconds end) const {
    std::shared_ptr<State> next;
    for (const auto& timer : timers_) {
      const bool due = timer->task && timer->due <= end;
      if (due && (!next || timer->due < next->due)) next = timer;
    }
    return next;
  }

  void moveTo(std::chrono::nanoseconds elapsed) {
    clock_.advance(elapsed - elapsed_);
    elapsed_ = elapsed;
  }

  ManualClock& clock_;
  std::chrono::nanoseconds elapsed_{0};
  std::deque<Task> tasks_;
  std::vector<std::shared_ptr<State>> timers_;
};

/// Queues whose tasks wait for runTasks().
class ManualQueues : public SerialQueues {
 public:
  std::unique_ptr<SerialQueue> makeBackgroundQueue(const std::string& label) override {
    labels.push_back(label);
    return std::make_unique<ManualQueue>(tasks_);
  }

  std::size_t pendingTasks() const { return tasks_->size(); }

  /// Runs one task; false if there is none.
  bool runTask() {
    if (tasks_->empty()) return false;
    const auto task = std::move(tasks_->front());
    tasks_->pop_front();
    task();
    return true;
  }

  void runTasks() {
    while (runTask()) {
    }
  }

  std::vector<std::string> labels;

 private:
  using Tasks = std::shared_ptr<std::deque<Task>>;

  class ManualQueue : public SerialQueue {
   public:
    explicit ManualQueue(Tasks tasks) : tasks_(std::move(tasks)) {}
    void async(Task task) override { tasks_->push_back(std::move(task)); }

   private:
    Tasks tasks_;
  };

  Tasks tasks_ = std::make_shared<std::deque<Task>>();
};

}  // namespace quillmont::testing
