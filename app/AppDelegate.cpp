#include "app/AppDelegate.h"

#include <algorithm>
#include <utility>

#include "app/ActivityLog.h"
#include "monitor/QuillmontDaemon.h"
#include "platform/Bundle.h"
#include "platform/Desktop.h"
#include "platform/Log.h"
#include "platform/Workspace.h"
#include "platform/view/HostingController.h"
#include "settings/ConfigManager.h"
#include "ui/MainView.h"

namespace quillmont {

std::shared_ptr<AppDelegate> AppDelegate::make(const Host& host, Singletons singletons) {
  return std::shared_ptr<AppDelegate>(new AppDelegate(host, std::move(singletons)));
}

AppDelegate::AppDelegate(const Host& host, Singletons singletons)
    : host_(host), singletons_(std::move(singletons)), popover_(host.desktop.makePopover()) {}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationDidFinishLaunching() {
  if (anotherInstanceRuns()) {
    host_.log.write("Another instance of Quillmont is already running. Exiting this instance.");
    host_.application.terminate();
    return;
  }
  singletons_.config();
  activityLog_ = std::make_unique<ActivityLog>(singletons_.daemon(), host_.log);
  makeStatusItem();
  fillPopover();
  watchClicksElsewhere();
}

void AppDelegate::applicationWillTerminate() {
  singletons_.daemon().waitForPendingEjects();
  singletons_.daemon().stop();
  singletons_.daemon().finishCleanUp();
}

void AppDelegate::togglePopover(Sender sender) {
  if (popover_->isShown()) {
    closePopover(sender);
  } else {
    showPopover(sender);
  }
}

void AppDelegate::showPopover(Sender) {
  auto* const button = statusItem_ ? statusItem_->button() : nullptr;
  if (!button) return;
  popover_->show(*button, RectEdge::minY);
  if (eventMonitor_) eventMonitor_->start();
}

void AppDelegate::closePopover(Sender sender) {
  popover_->performClose(sender);
  if (eventMonitor_) eventMonitor_->stop();
}

bool AppDelegate::anotherInstanceRuns() {
  const auto identifier = host_.bundle.identifier().value_or(kBundleIdentifier);
  const auto running = host_.workspace.runningApplications(identifier);
  return std::any_of(running.begin(), running.end(),
                     [&](std::int32_t pid) { return pid != host_.processIdentifier; });
}

void AppDelegate::makeStatusItem() {
  setStatusItem(host_.desktop.makeStatusItem(kVariableStatusItemLength));
  auto* const button = statusItem_ ? statusItem_->button() : nullptr;
  if (!button) return;
  button->setImage("opticaldiscdrive.fill", "Quillmont");
  button->setAction([weak = weak_from_this()](Sender sender) {
    if (const auto self = weak.lock()) self->togglePopover(sender);
  });
}

void AppDelegate::fillPopover() {
  const MainView panel(host_, singletons_.daemon(), singletons_.config());
  popover_->setContent(std::make_shared<HostingController>(panel, host_.mainRunLoop));
  popover_->setBehavior(PopoverBehavior::transient);
}

void AppDelegate::watchClicksElsewhere() {
  const EventMask mask =
      eventMaskOf(EventType::leftMouseDown) | eventMaskOf(EventType::rightMouseDown);
  auto closePanel = [weak = weak_from_this()](const Event* event) {
    const auto self = weak.lock();
    if (self && self->popover_->isShown()) self->closePopover(event);
  };
  setEventMonitor(std::make_unique<EventMonitor>(host_.desktop, mask, std::move(closePanel)));
}

}  // namespace quillmont
