#include "platform/linux/desktop/LinuxDesktop.h"

#include <QPalette>
#include <QToolTip>
#include <chrono>
#include <utility>

#include "platform/linux/desktop/LinuxPopover.h"
#include "platform/linux/desktop/LinuxStatusItem.h"
#include "platform/linux/desktop/alert_dialog.h"
#include "platform/linux/views/theme.h"

namespace quillmont {
namespace {

SwallowGuard::Time now() {
  return std::chrono::steady_clock::now();
}

void takeColors(bool dark) {
  setDark(dark);
  auto palette = QToolTip::palette();
  palette.setColor(QPalette::ToolTipBase, colorNow(Color::windowBackground));
  palette.setColor(QPalette::ToolTipText, colorNow(Color::primary));
  QToolTip::setPalette(palette);
}

}  // namespace

// The colours change before any popover, which subscribes later, takes them.
LinuxDesktop::LinuxDesktop(const LinuxApplication& application)
    : application_(application), appearanceChange_(appearance_.didChange().subscribe(&takeColors)) {
  takeColors(appearance_.isDark());
  mouse_.onButton = [this](std::uint32_t button, bool pressed) {
    pressed ? guard_.pressed() : guard_.released(button, now());
  };
}

std::unique_ptr<StatusItem> LinuxDesktop::makeStatusItem(double) {
  return std::make_unique<LinuxStatusItem>([this] { return guard_.swallows(now()); });
}

std::unique_ptr<Popover> LinuxDesktop::makePopover() {
  return std::make_unique<LinuxPopover>(appearance_,
                                        [this](bool byLeaving) { popoverClosed(byLeaving); });
}

std::optional<EventMonitorToken> LinuxDesktop::addGlobalEventMonitor(EventMask mask,
                                                                     EventHandler handler) {
  return mouse_.add(mask, std::move(handler));
}

void LinuxDesktop::removeEventMonitor(EventMonitorToken token) {
  mouse_.remove(token);
}

std::int64_t LinuxDesktop::runModal(const Alert& alert) {
  if (application_.isTerminating()) return kAlertAborted;
  return runAlertDialog(alert, QPalette(colorNow(Color::windowBackground)));
}

void LinuxDesktop::popoverClosed(bool byLeaving) {
  if (const auto button = mouse_.toldButton()) {
    guard_.closedByPress(*button);
  } else if (byLeaving) {
    guard_.closedByLeaving(now());
  }
}

}  // namespace quillmont
