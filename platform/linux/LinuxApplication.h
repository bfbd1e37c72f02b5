// The application object: a run loop and the signals that end it.
#pragma once

#include "platform/Application.h"
#include "platform/linux/EventLoop.h"
#include "platform/posix/Descriptor.h"

namespace quillmont {

/// Make it on the main thread before any other thread starts: it blocks SIGTERM, SIGINT and SIGHUP,
/// which threads inherit, and takes them as requests to terminate; one that was ignored when the
/// program started (nohup) stays ignored. SIGPIPE is ignored from then on. run() returns after
/// termination. A desktop's loop takes the place of the run loop's own in a derived class.
class LinuxApplication : public Application {
 public:
  /// `loop` must outlive the application.
  explicit LinuxApplication(EventLoop& loop);

  void setDelegate(ApplicationDelegate* delegate) override { delegate_ = delegate; }
  void run() override;
  void terminate() override;

  /// From the first terminate() on, also while the delegate is still being told.
  bool isTerminating() const { return terminating_; }

 protected:
  /// Serves the run loop until stopServing(); not at all if that came first.
  virtual void serve() { loop_.run(); }
  virtual void stopServing() { loop_.stop(); }

 private:
  void takeSignals();

  EventLoop& loop_;
  ApplicationDelegate* delegate_ = nullptr;
  bool terminating_ = false;
  Descriptor signals_;
  EventLoop::Watch watch_;
};

}  // namespace quillmont
