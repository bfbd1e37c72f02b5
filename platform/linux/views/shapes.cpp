#include "platform/linux/views/shapes.h"

#include <QImage>
#include <QPixmap>
#include <QPixmapCache>
#include <algorithm>
#include <cmath>
#include <vector>

#include "platform/linux/views/theme.h"
#include "platform/view/figures.h"

namespace quillmont {
namespace {

/// Averages every pixel with those up to `reach` away from it in its line. `step` leads from one
/// pixel to the next.
void blurLine(uchar* first, int count, qsizetype step, int reach, std::vector<uchar>& line) {
  line.resize(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) line[static_cast<std::size_t>(i)] = first[i * step];
  const auto value = [&](int i) {
    return i < 0 || i >= count ? 0 : static_cast<int>(line[static_cast<std::size_t>(i)]);
  };
  int sum = 0;
  for (int i = 0; i <= reach; ++i) sum += value(i);
  for (int i = 0; i < count; ++i) {
    first[i * step] = static_cast<uchar>(sum / (2 * reach + 1));
    sum += value(i + reach + 1) - value(i - reach);
  }
}

/// Three averages in a row are nearly a bell curve, whose standard deviation is `radius` here.
void blur(QImage& mask, double radius) {
  const int reach = static_cast<int>(std::lround((std::sqrt(4 * radius * radius + 1) - 1) / 2));
  if (reach < 1) return;
  std::vector<uchar> line;
  const auto stride = mask.bytesPerLine();
  for (int pass = 0; pass < 3; ++pass) {
    for (int y = 0; y < mask.height(); ++y) {
      blurLine(mask.scanLine(y), mask.width(), 1, reach, line);
    }
    for (int x = 0; x < mask.width(); ++x) {
      blurLine(mask.bits() + x, mask.height(), stride, reach, line);
    }
  }
}

QPixmap makeShadow(const QPainterPath& outline, QSizeF size, double radius, const QColor& color,
                   double scale) {
  QImage mask((size * scale).toSize(), QImage::Format_Alpha8);
  mask.fill(Qt::transparent);
  {
    QPainter painter(&mask);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(scale, scale);
    painter.fillPath(outline, Qt::black);
  }
  blur(mask, radius * scale);
  QImage colored(mask.size(), QImage::Format_ARGB32_Premultiplied);
  colored.fill(Qt::transparent);
  {
    QPainter painter(&colored);
    painter.drawImage(0, 0, mask);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(colored.rect(), color);
  }
  auto result = QPixmap::fromImage(colored);
  result.setDevicePixelRatio(scale);
  return result;
}

/// All cards cast the same shadow, so it is kept.
void drawShadow(QPainter& painter, const NativeShape& shape, const QRectF& rect) {
  auto color = colorNow(shape.shadow->color);
  if (shape.fill) color.setAlphaF(color.alphaF() * colorNow(*shape.fill).alphaF());
  const double reach = std::ceil(kShadowReach * shape.shadow->radius) + 1;
  const double scale = painter.device()->devicePixelRatioF();
  const QString key = QStringLiteral("shadow %1 %2 %3 %4 %5 %6 %7")
                          .arg(rect.width())
                          .arg(rect.height())
                          .arg(static_cast<int>(shape.kind))
                          .arg(shape.cornerRadius)
                          .arg(shape.shadow->radius)
                          .arg(color.rgba64())
                          .arg(scale);
  QPixmap shadow;
  if (!QPixmapCache::find(key, &shadow)) {
    const QRectF local(QPointF(reach, reach), rect.size());
    const QSizeF size = rect.size() + QSizeF(2 * reach, 2 * reach);
    shadow = makeShadow(outlineOf(shape, local), size, shape.shadow->radius, color, scale);
    QPixmapCache::insert(key, shadow);
  }
  const auto& offset = shape.shadow->offset;
  painter.drawPixmap(rect.topLeft() + QPointF(offset.x - reach, offset.y - reach), shadow);
}

}  // namespace

QPainterPath continuousRectangle(const QRectF& rect, double cornerRadius) {
  const auto curve = continuousCorner({rect.width(), rect.height()}, cornerRadius);
  const QPointF x(1, 0), y(0, 1);
  QPainterPath path(rect.topLeft() + y * curve.bend);
  const auto corner = [&](QPointF at, QPointF from, QPointF to) {
    path.lineTo(at + from * curve.bend);
    path.cubicTo(at + from * curve.hold, at + to * curve.hold, at + to * curve.bend);
  };
  corner(rect.topLeft(), y, x);
  corner(rect.topRight(), -x, y);
  corner(rect.bottomRight(), -y, -x);
  corner(rect.bottomLeft(), x, -y);
  path.closeSubpath();
  return path;
}

QPainterPath outlineOf(const NativeShape& shape, const QRectF& rect) {
  QPainterPath path;
  switch (shape.kind) {
    case NativeShape::Kind::rectangle:
      path.addRect(rect);
      break;
    case NativeShape::Kind::circle: {
      const double side = std::min(rect.width(), rect.height());
      path.addEllipse(rect.center(), side / 2, side / 2);
      break;
    }
    case NativeShape::Kind::roundedRectangle:
      path = continuousRectangle(rect, shape.cornerRadius);
      break;
  }
  return path;
}

QMarginsF reachOf(const NativeShape& shape) {
  const auto reach = figureReach(shape);
  return {reach.left, reach.top, reach.right, reach.bottom};
}

void drawShape(QPainter& painter, const NativeShape& shape, const QRectF& rect) {
  // Lines between areas begin at pixels already.
  painter.setRenderHint(QPainter::Antialiasing, shape.kind != NativeShape::Kind::rectangle);
  if (shape.shadow) drawShadow(painter, shape, rect);
  const auto outline = outlineOf(shape, rect);
  if (shape.fill) painter.fillPath(outline, colorNow(*shape.fill));
  if (shape.stroke && shape.stroke->lineWidth > 0) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.strokePath(outline, QPen(colorNow(shape.stroke->color), shape.stroke->lineWidth));
  }
}

}  // namespace quillmont
