#include "platform/macos/views/shapes.h"

#include <gtest/gtest.h>

#include <cmath>

namespace quillmont {
namespace {

const NSRect kCard = NSMakeRect(0, 0, 100, 60);

bool contains(NSBezierPath* path, double x, double y) {
  return [path containsPoint:NSMakePoint(x, y)];
}

TEST(Shapes, ContinuousCornersBeginEarlierThanCircularOnes) {
  @autoreleasepool {
    NSBezierPath* const path = continuousRectangle(kCard, 10);
    EXPECT_FALSE(contains(path, 11, 0.04));  // a circle would lie on the edge from 10 on
    EXPECT_TRUE(contains(path, 15, 0.04));
  }
}

TEST(Shapes, ContinuousCornersAreAsDeepAsCircularOnes) {
  @autoreleasepool {
    NSBezierPath* const path = continuousRectangle(kCard, 10);
    const double depth = 10 * (1 - std::sqrt(0.5));
    EXPECT_FALSE(contains(path, depth - 0.1, depth - 0.1));
    EXPECT_TRUE(contains(path, depth + 0.1, depth + 0.1));
    EXPECT_TRUE(NSEqualRects([path bounds], kCard));
  }
}

TEST(Shapes, ARadiusWithoutRoomMakesACircle) {
  @autoreleasepool {
    NSBezierPath* const path = continuousRectangle(NSMakeRect(0, 0, 40, 40), 500);
    for (const double angle : {0.1, 0.4, 0.785, 1.2}) {
      EXPECT_TRUE(contains(path, 20 + 19.8 * std::cos(angle), 20 + 19.8 * std::sin(angle)));
      EXPECT_FALSE(contains(path, 20 + 20.2 * std::cos(angle), 20 + 20.2 * std::sin(angle)));
    }
  }
}

TEST(Shapes, ACircleIsRoundInAnyFrame) {
  @autoreleasepool {
    const NativeShape circle{.kind = NativeShape::Kind::circle, .fill = Color::green};
    const NSRect bounds = [outlineOf(circle, NSMakeRect(0, 0, 40, 20)) bounds];
    EXPECT_NEAR(NSMinX(bounds), 10, 0.01);
    EXPECT_NEAR(NSMaxX(bounds), 30, 0.01);
    EXPECT_NEAR(NSMaxY(bounds), 20, 0.01);
  }
}

TEST(Shapes, ARectangleHasPlainCorners) {
  @autoreleasepool {
    const NativeShape plain{.fill = Color::green};
    EXPECT_TRUE(NSEqualRects([outlineOf(plain, kCard) bounds], kCard));
    EXPECT_TRUE(contains(outlineOf(plain, kCard), 0.1, 0.1));
  }
}

}  // namespace
}  // namespace quillmont
