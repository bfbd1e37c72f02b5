// The application's delegate: what comes alive at launch, how the panel opens and closes, and what
// has to end before the process.
#pragma once

#include <functional>
#include <memory>

#include "app/EventMonitor.h"
#include "platform/Application.h"
#include "platform/Host.h"
#include "platform/Popover.h"
#include "platform/StatusItem.h"

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
class AppDelegate : public ApplicationDelegate, public std::enable_shared_from_this<AppDelegate> {
 public:
  static std::shared_ptr<AppDelegate> make(const Host& host, Singletons singletons);
  ~AppDelegate() override;

  /// The menu-bar item; none before the launch has finished.
  StatusItem* statusItem() const { return statusItem_.get(); }
  void setStatusItem(std::unique_ptr<StatusItem> item) { statusItem_ = std::move(item); }

  /// Watches for clicks elsewhere; none before the launch has finished.
  EventMonitor* eventMonitor() const { return eventMonitor_.get(); }
  void setEventMonitor(std::unique_ptr<EventMonitor> monitor) {
    eventMonitor_ = std::move(monitor);
  }

  /// Leaves at once if another instance runs; else brings up the settings, the monitor, which
  /// starts by itself, and then the status item with its panel.
  void applicationDidFinishLaunching() override;

  /// Waits for an ejection in progress, for three seconds at most, stops the monitor, and leaves
  /// nothing behind of a program that is being removed.
  void applicationWillTerminate() override;

  /// What a click on the status item does.
  void togglePopover(Sender sender);

  /// Nothing happens without a status item that has a button.
  void showPopover(Sender sender);

  void closePopover(Sender sender);

 private:
  AppDelegate(const Host& host, Singletons singletons);
  bool anotherInstanceRuns();
  void makeStatusItem();
  void fillPopover();
  void watchClicksElsewhere();

  const Host host_;
  const Singletons singletons_;
  std::unique_ptr<ActivityLog> activityLog_;

  std::unique_ptr<StatusItem> statusItem_;
  const std::unique_ptr<Popover> popover_;
  std::unique_ptr<EventMonitor> eventMonitor_;
};

}  // namespace quillmont
