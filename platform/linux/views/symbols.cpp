#include "platform/linux/views/symbols.h"

#include <QPaintDevice>
#include <QTransform>
#include <algorithm>
#include <cmath>
#include <map>
#include <tuple>

#include "platform/linux/views/symbol_shapes.h"

namespace quillmont {
namespace {

/// In units of the symbols' grid.
double lineOf(FontWeight weight) {
  switch (weight) {
    case FontWeight::regular:
      return 1.7;
    case FontWeight::medium:
      return 2.0;
    case FontWeight::semibold:
      return 2.3;
    case FontWeight::bold:
      return 2.7;
  }
  return 1.7;
}

/// Putting a figure together takes longer than painting it, and a list of cards shows the same few.
const QPainterPath& outlineOf(const std::string& name, const SymbolGrid& grid) {
  using Key = std::tuple<std::string, double, double>;
  static std::map<Key, QPainterPath> outlines;
  constexpr std::size_t kMost = 64;
  const Key key(name, grid.pixels, grid.line);
  const auto found = outlines.find(key);
  if (found != outlines.end()) return found->second;
  if (outlines.size() >= kMost) outlines.clear();
  return outlines.emplace(key, symbolShape(name).outline(grid)).first->second;
}

}  // namespace

QSizeF symbolExtent(const std::string& name, double pointSize) {
  const double unit = pointSize / kSymbolLetterSize;
  return QSizeF(symbolShape(name).width, kSymbolHeight) * unit;
}

void drawSymbol(QPainter& painter, const std::string& name, const QRectF& box, FontWeight weight,
                const QColor& color) {
  const auto& shape = symbolShape(name);
  const double unit = std::min(box.width() / shape.width, box.height() / kSymbolHeight);
  if (!(unit > 0) || !std::isfinite(unit)) return;

  const auto toDevice = painter.deviceTransform();
  const double pixels = unit * std::hypot(toDevice.m11(), toDevice.m12());
  SymbolGrid grid{pixels};
  grid.line = grid.thick(lineOf(weight));

  const QSizeF size(shape.width * unit, kSymbolHeight * unit);
  QPointF origin = box.center() - QPointF(size.width(), size.height()) / 2;
  if (toDevice.isInvertible()) {
    const QPointF onDevice = toDevice.map(origin);
    const QPointF whole(std::floor(onDevice.x() + 0.5), std::floor(onDevice.y() + 0.5));
    origin = toDevice.inverted().map(whole);
  }
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.translate(origin);
  painter.scale(unit, unit);
  painter.fillPath(outlineOf(name, grid), color);
  painter.restore();
}

}  // namespace quillmont
