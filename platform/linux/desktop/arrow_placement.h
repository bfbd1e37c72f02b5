// Where a window with an arrow goes, and its outline. Pure geometry, in logical pixels.
#pragma once

#include <QMargins>
#include <QPainterPath>
#include <QRect>
#include <QSize>
#include <optional>

#include "platform/Popover.h"

namespace quillmont {

inline constexpr int kArrowLength = 10;     ///< from its tip to the body
inline constexpr int kArrowHalfWidth = 11;  ///< along the body
inline constexpr int kBodyRadius = 10;      ///< of the body's corners

struct ArrowPlacement {
  QRect body;                    ///< the rounded rectangle without its arrow, global
  std::optional<RectEdge> edge;  ///< of the anchor, at which the arrow sits; none: no arrow
  int tip = 0;                   ///< of the arrow, along the body's side, from its left or top
};

/// A body of `size` at `anchor`, within `available`. The arrow sits at `preferred` if there is room
/// outside that edge and the arrow can point at the anchor from there; else at the opposite edge,
/// else at one of the other two. Where nothing fits there is no arrow, and the body is kept inside
/// `available` as far as it goes, its beginning first.
ArrowPlacement placeAtAnchor(const QRect& anchor, QSize size, const QRect& available,
                             RectEdge preferred);

/// A body of `size` without an arrow: at the right end of `screen`, on the side on which bars take
/// something off it to leave `available`; at the top when none does.
ArrowPlacement placeInCorner(QSize size, const QRect& screen, const QRect& available);

/// The body and its arrow as one figure. `body` is the placement's, wherever it is to be drawn.
QPainterPath arrowOutline(const QRectF& body, const ArrowPlacement& placement);

/// What a window needs around the body: room for its arrow, and `shadow` on the sides without it.
/// Nothing may lie between the tip and the anchor, or the window would take the anchor's clicks.
QMargins windowMargins(const ArrowPlacement& placement, int shadow);

}  // namespace quillmont
