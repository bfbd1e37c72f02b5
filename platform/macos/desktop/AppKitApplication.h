// The application object of a Mac's desktop: AppKit's, whose loop serves the run loop too.
#pragma once

#include <memory>

#include "platform/Application.h"
#include "platform/RunLoop.h"

namespace quillmont {

/// Make it on the main thread before any other thread starts: it blocks SIGTERM, SIGINT and SIGHUP,
/// which threads inherit, and takes them as requests to terminate; one that was ignored when the
/// program started (nohup) stays ignored. A program that runs without its bundle, and so without
/// the word of an Info.plist, asks to be a menu-bar program itself.
///
/// Termination is AppKit's own, whoever asks for it: the panel, a signal, the end of the session.
/// The process ends within it, also from within an alert; run() does not return.
class AppKitApplication : public Application {
 public:
  /// `loop` must outlive the process.
  explicit AppKitApplication(RunLoop& loop);
  ~AppKitApplication() override;

  void setDelegate(ApplicationDelegate* delegate) override;
  void run() override;
  void terminate() override;

  /// From the first request to terminate on, also while the delegate is still being told.
  bool isTerminating() const;

 private:
  struct State;
  class Native;
  const std::shared_ptr<State> state_;
  std::unique_ptr<Native> native_;
};

}  // namespace quillmont
