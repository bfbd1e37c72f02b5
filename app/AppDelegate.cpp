#include "app/AppDelegate.h"

#include <algorithm>
#include <utility>

#include "app/ActivityLog.h"
#include "monitor/QuillmontDaemon.h"
#include "platform/Bundle.h"
#include "platform/Log.h"
#include "platform/Workspace.h"
#include "settings/ConfigManager.h"

namespace quillmont {

AppDelegate::AppDelegate(const Host& host, Singletons singletons)
    : host_(host), singletons_(std::move(singletons)) {}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationDidFinishLaunching() {
  if (anotherInstanceRuns()) {
    host_.log.write("Another instance of Quillmont is already running. Exiting this instance.");
    host_.application.terminate();
    return;
  }
  singletons_.config();
  activityLog_ = std::make_unique<ActivityLog>(singletons_.daemon(), host_.log);
}

void AppDelegate::applicationWillTerminate() {
  singletons_.daemon().waitForPendingEjects();
  singletons_.daemon().stop();
}

bool AppDelegate::anotherInstanceRuns() {
  const auto identifier = host_.bundle.identifier().value_or(kBundleIdentifier);
  const auto running = host_.workspace.runningApplications(identifier);
  return std::any_of(running.begin(), running.end(),
                     [&](std::int32_t pid) { return pid != host_.processIdentifier; });
}

}  // namespace quillmont
