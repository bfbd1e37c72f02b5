#include "platform/linux/views/NativeWidget.h"

#include <QGraphicsOpacityEffect>
#include <cmath>

namespace quillmont {
namespace {

constexpr double kInexact = 1e-6;

int wholeDown(double length) {
  return static_cast<int>(std::floor(length + kInexact));
}

/// The smallest rectangle of whole numbers around `rect`.
QRect enclosing(const QRectF& rect) {
  const QPoint corner(wholeDown(rect.left()), wholeDown(rect.top()));
  return {corner, QSize(wholeUp(rect.right()) - corner.x(), wholeUp(rect.bottom()) - corner.y())};
}

}  // namespace

int wholeUp(double length) {
  return static_cast<int>(std::ceil(length - kInexact));
}

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
