#include "platform/linux/views/NativeWidget.h"

#include <QGraphicsOpacityEffect>
#include <cmath>

namespace quillmont {
namespace {

/// The smallest rectangle of whole numbers around `rect`, but for what calculating has added to it.
QRect enclosing(const QRectF& rect) {
  constexpr double kError = 1e-6;
  const auto down = [](double length) { return static_cast<int>(std::floor(length + kError)); };
  const auto up = [](double length) { return static_cast<int>(std::ceil(length - kError)); };
  const QPoint corner(down(rect.left()), down(rect.top()));
  return {corner, QSize(up(rect.right()) - corner.x(), up(rect.bottom()) - corner.y())};
}

}  // namespace

void NativeWidget::place(const QRectF& frame) {
  frame_ = frame;
  const auto outer = enclosing(frame.marginsAdded(outset()));
  bounds_ = frame.translated(-outer.topLeft());
  widget()->setGeometry(outer);
  widget()->update();
}

void NativeWidget::addFocusStops(std::vector<QWidget*>& stops) {
  if (widget()->focusPolicy() != Qt::NoFocus) stops.push_back(widget());
}

void setOpacity(QWidget& widget, double opacity) {
  if (opacity >= 1) return widget.setGraphicsEffect(nullptr);
  auto* effect = qobject_cast<QGraphicsOpacityEffect*>(widget.graphicsEffect());
  if (!effect) {
    effect = new QGraphicsOpacityEffect(&widget);
    widget.setGraphicsEffect(effect);
  }
  effect->setOpacity(opacity);
}

}  // namespace quillmont
