// The application's delegate: what comes alive at launch, and what has to end before the process.
#pragma once

#include <functional>
#include <memory>

#include "platform/Application.h"
#include "platform/Host.h"

namespace quillmont {

class ActivityLog;
class ConfigManager;
class QuillmontDaemon;

/// Where the delegate gets the two singletons from; each is made when it is first asked for.
struct Singletons {
  std::function<ConfigManager&()> config;
  std::function<QuillmontDaemon&()> daemon;
};

/// One instance for the life of the process. Main thread.
class AppDelegate : public ApplicationDelegate {
 public:
  AppDelegate(const Host& host, Singletons singletons);
  ~AppDelegate() override;

  /// Leaves at once if another instance runs; else brings up the settings, then the monitor, which
  /// starts by itself.
  void applicationDidFinishLaunching() override;

  /// Lets an ejection in progress finish, then stops the monitor.
  void applicationWillTerminate() override;

 private:
  bool anotherInstanceRuns();

  const Host host_;
  const Singletons singletons_;
  std::unique_ptr<ActivityLog> activityLog_;
};

}  // namespace quillmont
