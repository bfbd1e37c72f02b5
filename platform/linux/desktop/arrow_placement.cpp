#include "platform/linux/desktop/arrow_placement.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace quillmont {
namespace {

/// How far from a corner of the body, at least, the arrow's tip is.
constexpr int kArrowReach = kBodyRadius + kArrowHalfWidth;

bool isVertical(RectEdge edge) {
  return edge == RectEdge::minY || edge == RectEdge::maxY;
}

/// The edges in the order in which they are tried.
std::array<RectEdge, 4> candidates(RectEdge preferred) {
  using enum RectEdge;
  switch (preferred) {
    case minY:
      return {minY, maxY, maxX, minX};
    case maxY:
      return {maxY, minY, maxX, minX};
    case minX:
      return {minX, maxX, minY, maxY};
    case maxX:
      break;
  }
  return {maxX, minX, minY, maxY};
}

int within(int position, int length, int from, int available) {
  return std::max(from, std::min(position, from + available - length));
}

QRect bodyAt(RectEdge edge, const QRect& anchor, QSize size) {
  QPoint at(anchor.x() + (anchor.width() - size.width()) / 2,
            anchor.y() + (anchor.height() - size.height()) / 2);
  if (edge == RectEdge::minY) at.setY(anchor.y() + anchor.height() + kArrowLength);
  if (edge == RectEdge::maxY) at.setY(anchor.y() - kArrowLength - size.height());
  if (edge == RectEdge::minX) at.setX(anchor.x() - kArrowLength - size.width());
  if (edge == RectEdge::maxX) at.setX(anchor.x() + anchor.width() + kArrowLength);
  return {at, size};
}

QRect movedInto(const QRect& body, const QRect& available) {
  return {within(body.x(), body.width(), available.x(), available.width()),
          within(body.y(), body.height(), available.y(), available.height()), body.width(),
          body.height()};
}

struct Span {
  int start, length;
};

Span along(RectEdge edge, const QRect& rect) {
  return isVertical(edge) ? Span{rect.x(), rect.width()} : Span{rect.y(), rect.height()};
}

int middle(const Span& span) {
  return span.start + span.length / 2;
}

/// Where the arrow of a body that lies there comes to stand along its side: before the anchor's
/// middle, or as near as the body's corners let it.
int tipPosition(RectEdge edge, const QRect& body, const QRect& anchor) {
  const auto side = along(edge, body);
  const int wanted = middle(along(edge, anchor)) - side.start;
  return std::max(kArrowReach, std::min(wanted, side.length - kArrowReach));
}

/// Whether the body keeps its distance to the anchor, and has the anchor before its side.
bool fits(RectEdge edge, const QRect& wanted, const QRect& moved, const QRect& anchor) {
  const bool keepsDistance = isVertical(edge) ? wanted.y() == moved.y() : wanted.x() == moved.x();
  const int tip = along(edge, moved).start + tipPosition(edge, moved, anchor);
  return keepsDistance && std::abs(tip - middle(along(edge, anchor))) <= kArrowReach;
}

}  // namespace

ArrowPlacement placeAtAnchor(const QRect& anchor, QSize size, const QRect& available,
                             RectEdge preferred) {
  for (const auto edge : candidates(preferred)) {
    const auto wanted = bodyAt(edge, anchor, size);
    const auto moved = movedInto(wanted, available);
    if (!fits(edge, wanted, moved, anchor)) continue;
    return {moved, edge, tipPosition(edge, moved, anchor)};
  }
  return {movedInto(bodyAt(preferred, anchor, size), available), std::nullopt, 0};
}

ArrowPlacement placeInCorner(QSize size, const QRect& screen, const QRect& available) {
  const int above = available.y() - screen.y();
  const int below = screen.y() + screen.height() - available.y() - available.height();
  const int y = below > above ? available.y() + available.height() - size.height() : available.y();
  const int x = available.x() + available.width() - size.width();
  return {movedInto({QPoint(x, y), size}, available), std::nullopt, 0};
}

QPainterPath arrowOutline(const QRectF& body, const ArrowPlacement& placement) {
  QPainterPath outline;
  outline.addRoundedRect(body, kBodyRadius, kBodyRadius);
  if (!placement.edge) return outline;
  const auto edge = *placement.edge;
  const bool atBeginning = edge == RectEdge::minY || edge == RectEdge::maxX;
  const double side = isVertical(edge) ? (atBeginning ? body.top() : body.bottom())
                                       : (atBeginning ? body.left() : body.right());
  const double outwards = atBeginning ? -1 : 1;
  const auto point = [&](double alongSide, double out) {
    const double across = side + outwards * out;
    return isVertical(edge) ? QPointF(body.left() + placement.tip + alongSide, across)
                            : QPointF(across, body.top() + placement.tip + alongSide);
  };
  // Its foot lies inside the body, so that the two become one figure without a seam; the tip is a
  // little rounded.
  QPainterPath arrow(point(-kArrowHalfWidth, -1));
  arrow.lineTo(point(-kArrowHalfWidth, 0));
  arrow.lineTo(point(-2, kArrowLength - 2));
  arrow.quadTo(point(0, kArrowLength), point(2, kArrowLength - 2));
  arrow.lineTo(point(kArrowHalfWidth, 0));
  arrow.lineTo(point(kArrowHalfWidth, -1));
  arrow.closeSubpath();
  return outline.united(arrow);
}

QMargins windowMargins(const ArrowPlacement& placement, int shadow) {
  QMargins result(shadow, shadow, shadow, shadow);
  if (placement.edge == RectEdge::minY) result.setTop(kArrowLength);
  if (placement.edge == RectEdge::maxY) result.setBottom(kArrowLength);
  if (placement.edge == RectEdge::minX) result.setRight(kArrowLength);
  if (placement.edge == RectEdge::maxX) result.setLeft(kArrowLength);
  return result;
}

}  // namespace quillmont
