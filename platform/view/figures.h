// The geometry of figures, for whoever draws them.
#pragma once

#include "platform/view/NativeView.h"
#include "platform/view/geometry.h"

namespace quillmont {

/// Of the switch, which hosts draw themselves, in its tint.
inline constexpr Size kSwitchSize{38, 22};

/// A corner that bends gradually: it begins before a circle of its radius would, and is as deep in
/// the middle. Lengths are measured from the corner along each of its sides.
struct ContinuousCorner {
  double bend = 0;  ///< where the side begins to bend
  double hold = 0;  ///< where the curve's control point is
};

/// Of a rectangle of `size`; a radius that is too large for it is made smaller.
ContinuousCorner continuousCorner(Size size, double radius);

/// Beyond so many of its radii nothing is left of a shadow.
inline constexpr double kShadowReach = 3;

/// Lengths outwards from the sides of a frame.
struct Reach {
  double left = 0, top = 0, right = 0, bottom = 0;
};

/// How far stroke and shadow reach beyond the outline.
Reach figureReach(const NativeShape& shape);

}  // namespace quillmont
