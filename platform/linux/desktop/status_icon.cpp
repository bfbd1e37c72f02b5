#include "platform/linux/desktop/status_icon.h"

#include <QPainter>
#include <QPixmap>
#include <algorithm>

#include "platform/linux/views/symbols.h"

namespace quillmont {
namespace {

constexpr double kRimOpacity = 0.55;

/// The symbol as large as a square of `side` pixels lets it be, with a rim of `rim` pixels around.
QRectF symbolBox(const std::string& name, int side, double rim) {
  const QSizeF natural = symbolExtent(name, side);
  const double room = side - 2 * rim;
  const double scale = room / std::max(natural.width(), natural.height());
  const QSizeF size = natural * scale;
  return {QPointF((side - size.width()) / 2, (side - size.height()) / 2), size};
}

QPixmap transparentSquare(int side) {
  QPixmap result(side, side);
  result.fill(Qt::transparent);
  return result;
}

QPixmap drawn(const std::string& name, const QRectF& box, int side) {
  QPixmap result = transparentSquare(side);
  QPainter painter(&result);
  painter.setRenderHint(QPainter::Antialiasing);
  drawSymbol(painter, name, box, FontWeight::regular, Qt::white);
  return result;
}

/// The figure in black, grown by `rim` in every direction.
QPixmap rimOf(const QPixmap& figure, double rim) {
  QPixmap result = transparentSquare(figure.width());
  QPainter painter(&result);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  for (const double x : {-rim, 0.0, rim}) {
    for (const double y : {-rim, 0.0, rim}) painter.drawPixmap(QPointF(x, y), figure);
  }
  painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
  painter.fillRect(result.rect(), Qt::black);
  return result;
}

QPixmap picture(const std::string& name, int side) {
  const double rim = std::max(1.0, side / 24.0);
  const auto figure = drawn(name, symbolBox(name, side, rim), side);
  QPixmap result = transparentSquare(side);
  QPainter painter(&result);
  painter.setOpacity(kRimOpacity);
  painter.drawPixmap(0, 0, rimOf(figure, rim));
  painter.setOpacity(1);
  painter.drawPixmap(0, 0, figure);
  return result;
}

}  // namespace

QIcon statusIcon(const std::string& symbolName) {
  QIcon icon;
  for (const int side : {16, 20, 22, 24, 32, 36, 44, 48, 64}) {
    icon.addPixmap(picture(symbolName, side));
  }
  return icon;
}

}  // namespace quillmont
