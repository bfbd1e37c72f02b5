// The application object of a desktop: Qt's loop, which serves the run loop too.
#pragma once

#include <QApplication>
#include <QSocketNotifier>
#include <memory>
#include <string>
#include <vector>

#include "platform/Log.h"
#include "platform/Observable.h"
#include "platform/linux/LinuxApplication.h"

namespace quillmont {

/// As LinuxApplication. Without a display that answers, it draws nowhere, says so in one line of
/// the log once the launch has finished, and everything else goes on. QT_QPA_PLATFORM is respected.
/// No message bus is started. Where the display goes away, or the session ends, the application is
/// terminated.
///
/// Terminating ends nested loops as well: an alert that is open goes without an answer. Qt is gone
/// when run() returns.
class QtApplication : public LinuxApplication {
 public:
  /// Both must outlive the process: Qt may still have something to say when it ends.
  QtApplication(EventLoop& loop, Log& log);
  ~QtApplication() override;

 protected:
  void serve() override;
  void stopServing() override;

 private:
  class QuitFilter;

  void finish();

  /// What Qt reads as the program's command line, for as long as it lives.
  struct Arguments {
    std::vector<std::string> texts;
    std::vector<char*> pointers;
    int count = 0;
  };

  Log& log_;
  bool hasNoDisplay_ = false;
  Arguments arguments_;
  std::unique_ptr<QuitFilter> quitFilter_;
  std::unique_ptr<QApplication> application_;
  std::unique_ptr<QSocketNotifier> notifier_;
};

/// Sent when Qt is about to go. Windows and icons have to go now: the program's own objects may
/// live longer than that.
Signal<>& qtWillEnd();

}  // namespace quillmont
