#include "platform/linux/views/SymbolWidget.h"

#include <QPainter>

#include "platform/linux/views/symbols.h"
#include "platform/linux/views/theme.h"

namespace quillmont {

void SymbolWidget::take(const NativeProperties& properties) {
  symbol_ = contentOf<NativeSymbol>(properties);
  setOpacity(*this, properties.opacity);
  update();
}

void SymbolWidget::paintEvent(QPaintEvent*) {
  QRectF box(QPointF(), symbolExtent(symbol_.name, symbol_.font.size));
  box.moveCenter(bounds().center());
  QPainter painter(this);
  drawSymbol(painter, symbol_.name, box, symbol_.font.weight, colorNow(symbol_.color));
}

}  // namespace quillmont
