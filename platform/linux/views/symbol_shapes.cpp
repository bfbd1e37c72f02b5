#include "platform/linux/views/symbol_shapes.h"

#include <QPainterPathStroker>
#include <QTransform>
#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <utility>

namespace quillmont {
namespace {

QPainterPath box(const QRectF& rect, double radius) {
  QPainterPath path;
  path.addRoundedRect(rect, radius, radius);
  return path;
}

QPainterPath disc(QPointF center, double radius) {
  QPainterPath path;
  path.addEllipse(center, radius, radius);
  return path;
}

/// Figures are put together at a hundred times their size: Qt breaks small curves into straight
/// lines when it joins them.
constexpr double kEnlargement = 100;

QPainterPath enlarged(const QPainterPath& path) {
  return QTransform::fromScale(kEnlargement, kEnlargement).map(path);
}

QPainterPath reduced(const QPainterPath& path) {
  return QTransform::fromScale(1 / kEnlargement, 1 / kEnlargement).map(path);
}

QPainterPath both(const QPainterPath& one, const QPainterPath& other) {
  return reduced(enlarged(one).united(enlarged(other)));
}

QPainterPath cut(const QPainterPath& from, const QPainterPath& what) {
  return reduced(enlarged(from).subtracted(enlarged(what)));
}

QPainterPath stroked(const QPainterPath& path, double width, Qt::PenCapStyle cap = Qt::RoundCap) {
  QPainterPathStroker stroker;
  stroker.setWidth(width * kEnlargement);
  stroker.setCapStyle(cap);
  stroker.setJoinStyle(Qt::RoundJoin);
  return reduced(stroker.createStroke(enlarged(path)).simplified());
}

/// A ring; a disc where the line leaves no room in the middle.
QPainterPath ring(QPointF center, double radius, double line) {
  if (radius - line < 0.3) return disc(center, radius);
  return cut(disc(center, radius), disc(center, radius - line));
}

/// The frame of a rectangle: its line lies inside of it.
QPainterPath frame(const QRectF& rect, double radius, double line) {
  const auto inner = rect.adjusted(line, line, -line, -line);
  return cut(box(rect, radius), box(inner, std::max(0.0, radius - line)));
}

QRectF between(double left, double top, double right, double bottom) {
  return {QPointF(left, top), QPointF(right, bottom)};
}

// A drive with a slot, a lamp, and a disc that stands half out of it.

struct DriveParts {
  QRectF body;
  QRectF slot;
  QRectF lamp;
  QPointF center;  ///< of the disc
  double radius;
};

DriveParts driveParts(const SymbolGrid& grid) {
  DriveParts parts;
  parts.body = between(grid.at(1), grid.at(14), grid.at(27), grid.at(22.4));
  const double slotHeight = grid.thick(1.5);
  const double slotTop = grid.at(18.2 - slotHeight / 2);
  parts.slot = between(grid.at(5), slotTop, grid.at(18), slotTop + slotHeight);
  const double lamp = grid.thick(2.1);
  parts.lamp = QRectF(grid.at(21), slotTop + (slotHeight - lamp) / 2, lamp, lamp);
  parts.radius = 9;
  parts.center = {parts.body.center().x(), grid.at(1.4) + parts.radius};
  return parts;
}

QPainterPath above(double bottom, const QPainterPath& figure) {
  return cut(figure, box(between(0, bottom, 28, 2 * kSymbolHeight), 0));
}

QPainterPath driveFilled(const SymbolGrid& grid) {
  const auto parts = driveParts(grid);
  const auto figure = cut(disc(parts.center, parts.radius), disc(parts.center, 2.1));
  auto body = cut(box(parts.body, 3), box(parts.slot, parts.slot.height() / 2));
  body = cut(body, box(parts.lamp, parts.lamp.height() / 2));
  return both(above(parts.body.top() - grid.thick(1.3), figure), body);
}

QPainterPath driveOutlined(const SymbolGrid& grid) {
  const auto parts = driveParts(grid);
  auto result =
      both(above(parts.body.top() + grid.line, ring(parts.center, parts.radius, grid.line)),
           ring(parts.center, 2.3, grid.line));
  result = both(result, frame(parts.body, 3, grid.line));
  result = both(result, box(parts.slot, parts.slot.height() / 2));
  return both(result, box(parts.lamp, parts.lamp.height() / 2));
}

// Padlocks.

/// The shackle as a line from one foot to the other.
QPainterPath shackle(double left, double right, double top, double leftFoot, double rightFoot) {
  const double radius = (right - left) / 2;
  QPainterPath path(QPointF(left, leftFoot));
  path.lineTo(left, top + radius);
  path.arcTo(QRectF(left, top, 2 * radius, 2 * radius), 180, -180);
  path.lineTo(right, rightFoot);
  return path;
}

QRectF lockBody(const SymbolGrid& grid) {
  return between(grid.at(1.2), grid.at(11), grid.at(15.2), grid.at(22));
}

QPainterPath lockClosed(const SymbolGrid& grid) {
  const auto body = lockBody(grid);
  const double line = grid.thick(grid.line * 1.2);
  const double left = grid.at(body.left() + 1.8) + line / 2;
  const double right = body.left() + body.right() - left;
  const double top = grid.at(2) + line / 2;
  const auto bow =
      stroked(shackle(left, right, top, body.top() + 1, body.top() + 1), line, Qt::FlatCap);
  return both(bow, box(body, 2.6));
}

QPainterPath lockOpen(const SymbolGrid& grid) {
  const auto body = lockBody(grid);
  const double line = grid.thick(grid.line * 1.2);
  const double width = body.width() - 3.6 - line;
  const double left = grid.at(body.right() - 1.8 - line) + line / 2;
  const double right = grid.at(left + width - line / 2) + line / 2;
  const double top = grid.at(2) + line / 2;
  const auto bow = stroked(shackle(left, right, top, body.top() + 1, grid.at(10.4)), line);
  return both(bow, box(body, 2.6));
}

QPainterPath eject(const SymbolGrid& grid) {
  const double left = grid.at(1), right = grid.at(21);
  const double base = grid.at(14.5);
  const double round = 1.6;
  QPainterPath triangle(QPointF((left + right) / 2, 3.2 + round));
  triangle.lineTo(right - round * 1.35, base - round);
  triangle.lineTo(left + round * 1.35, base - round);
  triangle.closeSubpath();
  const double top = grid.at(17);
  const QRectF bar = between(left, top, right, top + grid.thick(3.4));
  return both(both(triangle, stroked(triangle, 2 * round)), box(bar, 1.3));
}

/// A wheel with teeth that are narrower at their ends.
QPainterPath gear(const SymbolGrid&) {
  constexpr int kTeeth = 8;
  constexpr double kRoot = 7.6, kTip = 9.6, kRound = 0.9;
  constexpr double kRootHalf = 0.27, kTipHalf = 0.16;  // radians
  const QPointF center(12, 12);
  const auto at = [&](double radius, double angle) {
    return center + QPointF(radius * std::sin(angle), -radius * std::cos(angle));
  };
  QPainterPath wheel = disc(center, kRoot + 0.5);
  for (int tooth = 0; tooth < kTeeth; ++tooth) {
    const double angle = 2 * std::numbers::pi * tooth / kTeeth;
    QPainterPath path(at(kRoot - 1, angle - kRootHalf));
    path.lineTo(at(kTip, angle - kTipHalf));
    path.lineTo(at(kTip, angle + kTipHalf));
    path.lineTo(at(kRoot - 1, angle + kRootHalf));
    path.closeSubpath();
    wheel = both(both(wheel, path), stroked(path, 2 * kRound));
  }
  return cut(wheel, disc(center, 3.5));
}

QPainterPath power(const SymbolGrid& grid) {
  const double line = grid.thick(grid.line * 1.15);
  constexpr double kGap = 33;  // degrees to each side of the top
  const QPointF center(grid.at(11 - line / 2) + line / 2, 13);
  const double radius = 8.6 - line / 2;
  const QRectF circle(center - QPointF(radius, radius), QSizeF(2 * radius, 2 * radius));
  QPainterPath arc;
  arc.arcMoveTo(circle, 90 + kGap);
  arc.arcTo(circle, 90 + kGap, 360 - 2 * kGap);
  const QRectF bar(center.x() - line / 2, grid.at(2), line, grid.at(12.4) - grid.at(2));
  return both(stroked(arc, line), box(bar, line / 2));
}

QPainterPath trash(const SymbolGrid& grid) {
  const double line = grid.line;
  const double middle = grid.at(10 - line / 2) + line / 2;
  const double lid = grid.at(5);
  auto result = box(between(middle - 8.6, lid, middle + 8.6, lid + line), line / 2);

  QPainterPath handle(QPointF(middle - 3, lid + line / 2));
  handle.lineTo(middle - 2.6, grid.at(2) + line / 2);
  handle.lineTo(middle + 2.6, grid.at(2) + line / 2);
  handle.lineTo(middle + 3, lid + line / 2);
  result = both(result, stroked(handle, line));

  const double bottom = grid.at(22) - line / 2;
  QPainterPath bin(QPointF(middle - 6.8, lid + line / 2));
  bin.lineTo(middle - 6.05, bottom - 1.6);
  bin.quadTo(middle - 5.95, bottom, middle - 4.4, bottom);
  bin.lineTo(middle + 4.4, bottom);
  bin.quadTo(middle + 5.95, bottom, middle + 6.05, bottom - 1.6);
  bin.lineTo(middle + 6.8, lid + line / 2);
  result = both(result, stroked(bin, line));

  const double rib = grid.thick(std::min(1.6, line * 0.85));
  const double step = std::max(grid.at(3), rib + grid.thick(0.5));
  for (const int side : {-1, 0, 1}) {
    const double left = middle - line / 2 + (line - rib) / 2 + side * step;
    result = both(result, box(QRectF(left, grid.at(9), rib, grid.at(19) - grid.at(9)), rib / 2));
  }
  return result;
}

QPainterPath unknown(const SymbolGrid& grid) {
  return frame(between(grid.at(3), grid.at(3), grid.at(21), grid.at(21)), 0, grid.line);
}

using Entry = std::pair<const char*, SymbolShape>;

constexpr std::array kShapes = {
    Entry{"opticaldiscdrive", {28, driveOutlined}},
    Entry{"opticaldiscdrive.fill", {28, driveFilled}},
    Entry{"lock.fill", {16.4, lockClosed}},
    Entry{"lock.open.fill", {24, lockOpen}},
    Entry{"eject.fill", {22, eject}},
    Entry{"gearshape.fill", {24, gear}},
    Entry{"power", {22, power}},
    Entry{"trash", {20, trash}},
};

}  // namespace

double SymbolGrid::at(double length) const {
  return std::round(length * pixels) / pixels;
}

double SymbolGrid::thick(double thickness) const {
  return std::max(1.0, std::round(thickness * pixels)) / pixels;
}

const SymbolShape& symbolShape(const std::string& name) {
  static constexpr SymbolShape kUnknown{24, unknown};
  for (const auto& [known, shape] : kShapes) {
    if (name == known) return shape;
  }
  return kUnknown;
}

}  // namespace quillmont
