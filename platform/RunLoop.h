// The main thread's event loop: tasks handed over from other threads, and repeating timers.
#pragma once

#include <functional>
#include <memory>

namespace quillmont {

using Task = std::function<void()>;

/// A scheduled timer. Main thread. Destroying it invalidates it.
class Timer {
 public:
  virtual ~Timer() = default;
  /// No firing comes after this; may be called from the timer's own task, and again.
  virtual void invalidate() = 0;
};

class RunLoop {
 public:
  virtual ~RunLoop() = default;

  /// Runs `task` on the main thread, later, in the order of the calls. Any thread; never blocks.
  virtual void async(Task task) = 0;

  /// Runs `task` on the main thread every `interval` seconds, the first time one interval from
  /// now. Firings that were missed (a busy main thread, a sleeping machine) are not made up for.
  virtual std::unique_ptr<Timer> scheduleRepeatingTimer(double interval, Task task) = 0;
};

}  // namespace quillmont
