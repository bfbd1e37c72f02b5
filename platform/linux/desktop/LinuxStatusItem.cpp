#include "platform/linux/desktop/LinuxStatusItem.h"

#include <QApplication>
#include <QCursor>
#include <QScreen>
#include <utility>

#include "platform/linux/desktop/QtApplication.h"
#include "platform/linux/desktop/status_icon.h"
#include "platform/linux/desktop/x11.h"

namespace quillmont {

QRect barAnchor(const QPoint& pointer, const QRect& screen, const QRect& available) {
  QRect result(pointer, QSize(1, 1));
  if (pointer.y() < available.top()) {
    result.setTop(screen.top());
    result.setBottom(available.top() - 1);
  } else if (pointer.y() > available.bottom()) {
    result.setTop(available.bottom() + 1);
    result.setBottom(screen.bottom());
  } else if (pointer.x() < available.left()) {
    result.setLeft(screen.left());
    result.setRight(available.left() - 1);
  } else if (pointer.x() > available.right()) {
    result.setLeft(available.right() + 1);
    result.setRight(screen.right());
  }
  return result;
}

LinuxStatusItem::LinuxStatusItem(std::function<bool()> swallows)
    : swallows_(std::move(swallows)),
      watch_(std::make_unique<TrayWatch>([this] { appear(); })),
      end_(qtWillEnd().subscribe([this] {
        watch_ = nullptr;
        icon_ = nullptr;
      })) {}

LinuxStatusItem::~LinuxStatusItem() = default;

void LinuxStatusItem::setImage(const std::string& symbolName,
                               const std::string& accessibilityDescription) {
  symbolName_ = symbolName;
  description_ = accessibilityDescription;
  if (!icon_) return;
  icon_->setIcon(statusIcon(symbolName_));
  icon_->setToolTip(QString::fromStdString(description_));
}

void LinuxStatusItem::setAction(std::function<void(Sender)> action) {
  action_ = std::move(action);
}

void LinuxStatusItem::click() {
  const auto action = action_;
  action(static_cast<StatusItemButton*>(this));
}

/// Read when it is needed: until a bar has taken the icon in, and after the bar has moved, what Qt
/// said before is wrong.
std::optional<QRect> LinuxStatusItem::screenRect() const {
  if (!icon_) return std::nullopt;
  if (isWindowOfOurs()) return icon_->geometry();
  // Within Wayland the pointer is only seen over windows of the program's own kind.
  if (!clickedByUser_ || !qtX11Connection() || isWithinWayland()) return std::nullopt;
  const auto pointer = QCursor::pos();
  const auto* const screen = QGuiApplication::screenAt(pointer);
  if (!screen) return std::nullopt;
  return barAnchor(pointer, screen->geometry(), screen->availableGeometry());
}

void LinuxStatusItem::appear() {
  watch_ = nullptr;
  icon_ = std::make_unique<QSystemTrayIcon>();
  setImage(symbolName_, description_);
  QObject::connect(icon_.get(), &QSystemTrayIcon::activated, icon_.get(),
                   [this](QSystemTrayIcon::ActivationReason reason) { activated(reason); });
  icon_->show();
}

/// The second press of a double click is a click like the first.
void LinuxStatusItem::activated(QSystemTrayIcon::ActivationReason reason) {
  if (reason != QSystemTrayIcon::Trigger && reason != QSystemTrayIcon::DoubleClick) return;
  // An alert is answered first. Qt itself keeps clicks from windows only.
  if (QApplication::activeModalWidget()) return;
  if (!isWindowOfOurs() && swallows_()) return;
  clickedByUser_ = true;
  click();
  clickedByUser_ = false;
}

/// A bar on the session bus draws the icon itself, and Qt then knows no place of it.
bool LinuxStatusItem::isWindowOfOurs() const {
  return !icon_->geometry().isEmpty();
}

}  // namespace quillmont
