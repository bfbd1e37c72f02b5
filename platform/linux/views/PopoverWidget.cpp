#include "platform/linux/views/PopoverWidget.h"

#include <QApplication>
#include <QMouseEvent>
#include <cmath>

#include "platform/linux/desktop/ArrowWindow.h"
#include "platform/linux/views/theme.h"

namespace quillmont {

PopoverWidget::PopoverWidget(NativeWidget& anchor, QWidget* root, ViewId id, ViewActions& actions)
    : anchor_(anchor),
      root_(root),
      id_(id),
      actions_(actions),
      window_(new ArrowWindow(root)),
      content_(new QWidget) {
  window_->setWindowTitle(QApplication::applicationName());
  window_->setContent(content_);
  window_->setBackground(colorNow(Color::windowBackground));
  window_->onCloseRequest = [id, &actions] { actions.dismiss(id); };
  qApp->installEventFilter(this);
}

PopoverWidget::~PopoverWidget() {
  close();
  if (window_) window_->deleteLater();
}

QWidget* PopoverWidget::widget() {
  return window_;
}

void PopoverWidget::take(const NativeProperties& properties) {
  edge_ = contentOf<NativePopover>(properties).arrowEdge;
  shownAt_ = {};
}

void PopoverWidget::place(const QRectF& frame) {
  content_->resize(wholeUp(frame.width()), wholeUp(frame.height()));
}

void PopoverWidget::present() {
  if (closed_ || !window_ || !root_->isVisible()) return;
  const auto anchor = anchorOnScreen();
  if (window_->isVisible() && anchor == shownAt_) return;
  shownAt_ = anchor;
  window_->showAt(anchor, edge_);
}

void PopoverWidget::close() {
  closed_ = true;
  if (!window_ || !window_->isVisible()) return;
  const bool hadKeyboard = window_->isActiveWindow();
  window_->hide();
  if (hadKeyboard && root_->isVisible()) root_->window()->activateWindow();
}

void PopoverWidget::appearanceDidChange() {
  if (window_) window_->setBackground(colorNow(Color::windowBackground));
}

bool PopoverWidget::eventFilter(QObject* watched, QEvent* event) {
  if (closed_ || !window_) return false;
  if (watched == root_) {
    if (event->type() == QEvent::Hide) {
      close();
      actions_.dismiss(id_);
    } else if (event->type() == QEvent::Show) {
      present();
    }
  }
  if (event->type() == QEvent::MouseButtonPress && watched->isWidgetType() &&
      window_->isVisible()) {
    const auto position = static_cast<QMouseEvent*>(event)->globalPosition().toPoint();
    if (isElsewhere(*static_cast<QWidget*>(watched), position)) actions_.dismiss(id_);
  }
  return false;
}

QRect PopoverWidget::anchorOnScreen() const {
  const auto bounds = anchor_.bounds().toAlignedRect();
  return {anchor_.widget()->mapToGlobal(bounds.topLeft()), bounds.size()};
}

/// One press comes here more than once, on its way from a widget to those around it.
bool PopoverWidget::isElsewhere(const QWidget& pressed, QPoint position) const {
  for (const QObject* object = &pressed; object; object = object->parent()) {
    if (object == window_) return false;
  }
  return pressed.window() != root_->window() || !anchorOnScreen().contains(position);
}

}  // namespace quillmont
