// The main thread's run loop on a Mac.
#pragma once

#include <memory>

#include "platform/RunLoop.h"

namespace quillmont {

/// Served by whoever runs the main thread's NSRunLoop, also while an alert waits for its answer, a
/// menu is open or a control is dragged. A task may itself serve the run loop, as an alert does:
/// nothing is run twice, the tasks behind it run meanwhile, and a timer whose task is under way
/// does not fire again.
///
/// While there is a timer, the process is shown to be active: the system would otherwise put a
/// program without windows to sleep and let its timers drift.
class MainRunLoop : public RunLoop {
 public:
  MainRunLoop();
  ~MainRunLoop() override;
  MainRunLoop(const MainRunLoop&) = delete;
  MainRunLoop& operator=(const MainRunLoop&) = delete;

  void async(Task task) override;

  /// Main thread.
  std::unique_ptr<Timer> scheduleRepeatingTimer(double interval, Task task) override;

 private:
  struct Tasks;
  struct Activity;
  class LoopTimer;

  std::shared_ptr<Tasks> tasks_;
  std::weak_ptr<Activity> activity_;
};

}  // namespace quillmont
