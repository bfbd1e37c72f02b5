#include "platform/linux/desktop/LinuxPopover.h"

#include <QApplication>
#include <QScreen>
#include <QWindow>
#include <utility>

#include "platform/linux/desktop/LinuxStatusItem.h"
#include "platform/linux/desktop/QtApplication.h"
#include "platform/linux/views/theme.h"

namespace quillmont {

LinuxPopover::LinuxPopover(Appearance& appearance, std::function<void(bool)> onClosed)
    : appearance_(appearance),
      onClosed_(std::move(onClosed)),
      appearanceChange_(appearance_.didChange().subscribe([this](bool) { takeColors(); })),
      end_(qtWillEnd().subscribe([this] { release(); })) {}

LinuxPopover::~LinuxPopover() {
  release();
}

void LinuxPopover::setContent(std::shared_ptr<HostingController> content) {
  release();
  content_ = std::move(content);
  if (!content_) return;
  window_ = std::make_unique<ArrowWindow>();
  window_->setWindowTitle(QApplication::applicationName());
  window_->onCloseRequest = [this] {
    if (behavior_ == PopoverBehavior::transient) close(!QGuiApplication::focusWindow());
  };
  mount_ = std::make_unique<QtMount>(*content_);
  metrics_ = std::make_unique<QtMetrics>(window_.get());
  content_->mount(*mount_, *metrics_);
  window_->setContent(mount_->widget());
  window_->winId();  // brings its QWindow into being
  QObject::connect(window_->windowHandle(), &QWindow::screenChanged, window_.get(),
                   [this] { content_->metricsDidChange(); });
  takeColors();
}

bool LinuxPopover::isShown() const {
  return window_ && window_->isVisible();
}

void LinuxPopover::show(StatusItemButton& button, RectEdge edge) {
  if (!window_) return;
  content_->setVisible(true);
  const auto* const item = dynamic_cast<const LinuxStatusItem*>(&button);
  const auto anchor = item ? item->screenRect() : std::nullopt;
  if (anchor) {
    window_->showAt(*anchor, edge);
  } else {
    window_->showInCorner();
  }
}

void LinuxPopover::performClose(Sender) {
  close(false);
}

void LinuxPopover::close(bool byLeaving) {
  if (!isShown()) return;
  window_->hide();
  content_->setVisible(false);
  onClosed_(byLeaving);
}

/// The widgets go before the mount, and before either goes the content lets go of both.
void LinuxPopover::release() {
  if (content_) content_->unmount();
  window_ = nullptr;
  mount_ = nullptr;
  metrics_ = nullptr;
  content_ = nullptr;
}

void LinuxPopover::takeColors() {
  if (!window_) return;
  window_->setBackground(colorNow(Color::windowBackground));
  mount_->appearanceDidChange();
}

}  // namespace quillmont
