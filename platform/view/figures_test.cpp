#include "platform/view/figures.h"

#include <gtest/gtest.h>

#include <cmath>

namespace quillmont {
namespace {

constexpr Size kWide{100, 40};

/// How far from the corner, along each side, the middle of the curve is. Its ends are at (bend, 0)
/// and (0, bend), its control points at (hold, 0) and (0, hold).
double depthOf(const ContinuousCorner& corner) {
  return (corner.bend + 3 * corner.hold) / 8;
}

/// The same of a circle's quarter.
double depthOfCircle(double radius) {
  return radius * (1 - std::sqrt(0.5));
}

TEST(ContinuousCorner, BeginsToBendBeforeACircleAndIsAsDeep) {
  const auto corner = continuousCorner(kWide, 8);
  EXPECT_GT(corner.bend, 8);
  EXPECT_LT(corner.bend, 16);
  EXPECT_NEAR(depthOf(corner), depthOfCircle(8), 1e-9);
}

TEST(ContinuousCorner, BendsNoLongerThanHalfTheShorterSide) {
  const auto corner = continuousCorner(kWide, 18);
  EXPECT_EQ(corner.bend, 20);
  EXPECT_NEAR(depthOf(corner), depthOfCircle(18), 1e-9);
}

TEST(ContinuousCorner, ARadiusThatDoesNotFitIsMadeSmaller) {
  EXPECT_EQ(continuousCorner(kWide, 1000).bend, continuousCorner(kWide, 20).bend);
  EXPECT_EQ(continuousCorner(kWide, 1000).hold, continuousCorner(kWide, 20).hold);
}

TEST(ContinuousCorner, WithoutARadiusOrASizeThereIsNone) {
  for (const auto& corner :
       {continuousCorner(kWide, 0), continuousCorner(kWide, -3), continuousCorner({0, 40}, 8)}) {
    EXPECT_EQ(corner.bend, 0);
    EXPECT_EQ(corner.hold, 0);
  }
}

TEST(FigureReach, StrokeReachesHalfItsWidthToEachSide) {
  NativeShape shape;
  shape.stroke = Stroke{Color::black, 3};
  const auto reach = figureReach(shape);
  for (const double side : {reach.left, reach.top, reach.right, reach.bottom}) {
    EXPECT_EQ(side, 1.5);
  }
}

TEST(FigureReach, ShadowReachesFurtherWhereItIsMovedTo) {
  NativeShape shape;
  shape.shadow = Shadow{Color::black, 2, {1, 4}};
  const auto reach = figureReach(shape);
  EXPECT_EQ(reach.left, 2 * kShadowReach - 1);
  EXPECT_EQ(reach.top, 2 * kShadowReach - 4);
  EXPECT_EQ(reach.right, 2 * kShadowReach + 1);
  EXPECT_EQ(reach.bottom, 2 * kShadowReach + 4);
}

TEST(FigureReach, ShadowThatIsMovedFarLeavesTheStroke) {
  NativeShape shape;
  shape.stroke = Stroke{Color::black, 2};
  shape.shadow = Shadow{Color::black, 1, {10, 0}};
  EXPECT_EQ(figureReach(shape).left, 1);
}

TEST(FigureReach, NeitherStrokeNorShadowReachNowhere) {
  EXPECT_EQ(figureReach({}).bottom, 0);
}

}  // namespace
}  // namespace quillmont
