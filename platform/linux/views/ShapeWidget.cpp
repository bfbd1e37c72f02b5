#include "platform/linux/views/ShapeWidget.h"

#include <QPainter>

#include "platform/linux/views/shapes.h"

namespace quillmont {

void ShapeWidget::take(const NativeProperties& properties) {
  shape_ = contentOf<NativeShape>(properties);
  setOpacity(*this, properties.opacity);
  placeAgain();
}

QMarginsF ShapeWidget::outset() const {
  return reachOf(shape_);
}

void ShapeWidget::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  drawShape(painter, shape_, bounds());
}

}  // namespace quillmont
