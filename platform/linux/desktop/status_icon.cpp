#include "platform/linux/desktop/status_icon.h"

#include <QIconEngine>
#include <QPainter>
#include <QPixmap>
#include <algorithm>
#include <iterator>
#include <map>
#include <utility>

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

constexpr int kSides[] = {16, 20, 22, 24, 32, 36, 44, 48, 64};

/// Draws a size when a bar asks for it: most ask for one or two, and putting the symbol's figure
/// together takes long.
class StatusIconEngine : public QIconEngine {
 public:
  explicit StatusIconEngine(std::string symbolName) : symbolName_(std::move(symbolName)) {}

  QIconEngine* clone() const override { return new StatusIconEngine(*this); }
  bool isNull() override { return false; }

  QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override {
    QList<QSize> sizes;
    for (const int side : kSides) sizes.append(QSize(side, side));
    return sizes;
  }

  /// The next size that is not larger; a bar with less room than any has the smallest made smaller.
  QSize actualSize(const QSize& room, QIcon::Mode, QIcon::State) override {
    const int free = std::min(room.width(), room.height());
    const int side = std::min(free, largestWithin(free));
    return QSize(side, side);
  }

  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    const auto actual = actualSize(size, mode, state);
    const auto& picture = pictureOf(largestWithin(actual.width()));
    if (picture.size() == actual || actual.isEmpty()) return picture;
    return picture.scaled(actual, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  }

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
    const auto scale = painter->device() ? painter->device()->devicePixelRatioF() : 1;
    auto image = pixmap((QSizeF(rect.size()) * scale).toSize(), mode, state);
    image.setDevicePixelRatio(scale);
    const QSizeF size = image.deviceIndependentSize();
    painter->drawPixmap(QRectF(rect).center() - QPointF(size.width(), size.height()) / 2, image);
  }

 private:
  static int largestWithin(int side) {
    const auto* const next = std::upper_bound(std::begin(kSides), std::end(kSides), side);
    return next == std::begin(kSides) ? *next : *(next - 1);
  }

  const QPixmap& pictureOf(int side) {
    const auto found = pictures_.find(side);
    if (found != pictures_.end()) return found->second;
    return pictures_.emplace(side, picture(symbolName_, side)).first->second;
  }

  std::string symbolName_;
  std::map<int, QPixmap> pictures_;
};

}  // namespace

QIcon statusIcon(const std::string& symbolName) {
  return QIcon(new StatusIconEngine(symbolName));
}

}  // namespace quillmont
