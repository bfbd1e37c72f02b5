#include "platform/view/figures.h"

#include <algorithm>
#include <cmath>

namespace quillmont {
namespace {

/// How far from the corner a side begins to bend, in radii.
constexpr double kBend = 1.42;

/// Where a quarter of a circle with radius 1 is nearest to its corner, along each side, eight
/// times: a curve of the third degree is there at an eighth of what its four points add up to.
const double kDepth = 8 * (1 - std::sqrt(0.5));

}  // namespace

ContinuousCorner continuousCorner(Size size, double radius) {
  const double most = std::min(size.width, size.height) / 2;
  const double fitting = std::clamp(radius, 0.0, std::max(0.0, most));
  const double bend = std::min(kBend * fitting, most);
  return {bend, (kDepth * fitting - bend) / 3};
}

Reach figureReach(const NativeShape& shape) {
  const double line = shape.stroke ? shape.stroke->lineWidth / 2 : 0;
  if (!shape.shadow) return {line, line, line, line};
  const double blurred = kShadowReach * shape.shadow->radius;
  const auto& offset = shape.shadow->offset;
  return {std::max(line, blurred - offset.x), std::max(line, blurred - offset.y),
          std::max(line, blurred + offset.x), std::max(line, blurred + offset.y)};
}

}  // namespace quillmont
