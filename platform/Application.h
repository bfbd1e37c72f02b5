// The application object: the main thread's life from start to end.
#pragma once

namespace quillmont {

/// Main thread.
class ApplicationDelegate {
 public:
  virtual ~ApplicationDelegate() = default;
  virtual void applicationDidFinishLaunching() = 0;
  virtual void applicationWillTerminate() = 0;
};

/// Main thread.
class Application {
 public:
  virtual ~Application() = default;

  /// `delegate` must outlive the application's run.
  virtual void setDelegate(ApplicationDelegate* delegate) = 0;

  /// Tells the delegate that launching has finished, then serves the run loop until termination.
  /// May return, or end the process itself.
  virtual void run() = 0;

  /// Ends the application the ordinary way: the delegate's applicationWillTerminate() runs once,
  /// then the process ends. Further calls do nothing.
  virtual void terminate() = 0;
};

}  // namespace quillmont
