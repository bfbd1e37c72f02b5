#include "platform/linux/desktop/arrow_placement.h"

#include <gtest/gtest.h>

namespace quillmont {
namespace {

using enum RectEdge;

constexpr QRect kScreen(0, 0, 1000, 800);
constexpr QRect kBelowTopBar(0, 24, 1000, 776);
constexpr QSize kBody(300, 400);

/// The tip in global coordinates, along the body's side.
int globalTip(const ArrowPlacement& placement) {
  const bool vertical = placement.edge == minY || placement.edge == maxY;
  return placement.tip + (vertical ? placement.body.x() : placement.body.y());
}

TEST(ArrowPlacement, HangsBelowTheMiddleOfItsAnchor) {
  const auto placement = placeAtAnchor(QRect(490, 0, 20, 24), kBody, kBelowTopBar, minY);
  EXPECT_EQ(placement.edge, minY);
  EXPECT_EQ(placement.body, QRect(350, 34, 300, 400));
  EXPECT_EQ(globalTip(placement), 500);
}

TEST(ArrowPlacement, StandsAboveAnAnchorAtTheBottom) {
  const QRect available(0, 0, 1000, 776);
  const auto placement = placeAtAnchor(QRect(490, 776, 20, 24), kBody, available, minY);
  EXPECT_EQ(placement.edge, maxY);
  EXPECT_EQ(placement.body, QRect(350, 366, 300, 400));
}

TEST(ArrowPlacement, ThePreferredEdgeHoldsWhereBothHaveRoom) {
  const QRect anchor(490, 390, 20, 20);
  EXPECT_EQ(placeAtAnchor(anchor, QSize(100, 100), kScreen, minY).edge, minY);
  EXPECT_EQ(placeAtAnchor(anchor, QSize(100, 100), kScreen, maxY).edge, maxY);
  EXPECT_EQ(placeAtAnchor(anchor, QSize(100, 100), kScreen, minX).edge, minX);
  EXPECT_EQ(placeAtAnchor(anchor, QSize(100, 100), kScreen, maxX).edge, maxX);
}

TEST(ArrowPlacement, MovesInwardsAtTheScreensEndWithItsTipStillOnTheAnchor) {
  const auto placement = placeAtAnchor(QRect(940, 0, 20, 24), kBody, kBelowTopBar, minY);
  EXPECT_EQ(placement.body, QRect(700, 34, 300, 400));
  EXPECT_EQ(globalTip(placement), 950);
}

TEST(ArrowPlacement, TheTipKeepsItsDistanceToTheCorners) {
  const auto last = placeAtAnchor(QRect(978, 0, 22, 24), kBody, kBelowTopBar, minY);
  EXPECT_EQ(last.edge, minY);
  EXPECT_EQ(last.tip, 300 - kBodyRadius - kArrowHalfWidth);
  const auto first = placeAtAnchor(QRect(0, 0, 22, 24), kBody, kBelowTopBar, minY);
  EXPECT_EQ(first.edge, minY);
  EXPECT_EQ(first.tip, kBodyRadius + kArrowHalfWidth);
}

TEST(ArrowPlacement, StandsBesideAnUprightBar) {
  const auto left = placeAtAnchor(QRect(0, 200, 24, 24), kBody, QRect(24, 0, 976, 800), minY);
  EXPECT_EQ(left.edge, maxX);
  EXPECT_EQ(left.body, QRect(34, 12, 300, 400));
  const auto right = placeAtAnchor(QRect(976, 200, 24, 24), kBody, QRect(0, 0, 976, 800), minY);
  EXPECT_EQ(right.edge, minX);
  EXPECT_EQ(right.body.x() + right.body.width(), 966);
}

TEST(ArrowPlacement, TooLargeForEveryEdgeItHasNoArrowAndStaysOnTheScreen) {
  const auto placement = placeAtAnchor(QRect(490, 390, 20, 20), QSize(900, 700), kScreen, minY);
  EXPECT_FALSE(placement.edge);
  EXPECT_TRUE(kScreen.contains(placement.body));
}

TEST(ArrowPlacement, LargerThanTheScreenItShowsItsBeginning) {
  const auto placement = placeAtAnchor(QRect(490, 0, 20, 24), QSize(2000, 1600), kScreen, minY);
  EXPECT_EQ(placement.body.topLeft(), QPoint(0, 0));
}

TEST(ArrowPlacement, WorksOnAScreenLeftOfTheFirst) {
  const QRect second(-1000, 0, 1000, 800);
  const auto placement = placeAtAnchor(QRect(-30, 0, 20, 24), kBody, second, minY);
  EXPECT_EQ(placement.edge, minY);
  EXPECT_EQ(placement.body.x() + placement.body.width(), 0);
}

/// Wherever the anchor is: within the area, clear of the anchor, the tip before it.
TEST(ArrowPlacement, HoldsAllRoundTheScreen) {
  for (int x = 0; x <= 980; x += 7) {
    for (int y = 0; y <= 780; y += 13) {
      const QRect anchor(x, y, 20, 20);
      const auto placement = placeAtAnchor(anchor, kBody, kScreen, minY);
      ASSERT_TRUE(placement.edge) << x << "," << y;
      EXPECT_TRUE(kScreen.contains(placement.body)) << x << "," << y;
      EXPECT_FALSE(placement.body.intersects(anchor)) << x << "," << y;
    }
  }
}

TEST(CornerPlacement, StandsWhereTheBarIs) {
  EXPECT_EQ(placeInCorner(kBody, kScreen, kBelowTopBar).body, QRect(700, 24, 300, 400));
  EXPECT_EQ(placeInCorner(kBody, kScreen, QRect(0, 0, 1000, 770)).body, QRect(700, 370, 300, 400));
  EXPECT_EQ(placeInCorner(kBody, kScreen, kScreen).body, QRect(700, 0, 300, 400));
  EXPECT_FALSE(placeInCorner(kBody, kScreen, kScreen).edge);
}

TEST(WindowMargins, LeaveNothingBetweenTheTipAndTheAnchor) {
  ArrowPlacement placement;
  EXPECT_EQ(windowMargins(placement, 16), QMargins(16, 16, 16, 16));
  placement.edge = minY;
  EXPECT_EQ(windowMargins(placement, 16), QMargins(16, kArrowLength, 16, 16));
  placement.edge = maxY;
  EXPECT_EQ(windowMargins(placement, 0), QMargins(0, 0, 0, kArrowLength));
  placement.edge = minX;
  EXPECT_EQ(windowMargins(placement, 16), QMargins(16, 16, kArrowLength, 16));
  placement.edge = maxX;
  EXPECT_EQ(windowMargins(placement, 16), QMargins(kArrowLength, 16, 16, 16));
}

TEST(ArrowOutline, ReachesToTheAnchorAndNoFurther) {
  constexpr double kRoundedTip = 1.5;
  const QRectF body(16, 16, 300, 400);
  for (const auto edge : {minX, minY, maxX, maxY}) {
    const auto outline = arrowOutline(body, {body.toRect(), edge, 100});
    const auto bounds = outline.boundingRect();
    const bool below = edge == minY, above = edge == maxY, right = edge == maxX,
               left = edge == minX;
    EXPECT_NEAR(bounds.top(), below ? 6 : 16, kRoundedTip);
    EXPECT_NEAR(bounds.bottom(), above ? 426 : 416, kRoundedTip);
    EXPECT_NEAR(bounds.left(), right ? 6 : 16, kRoundedTip);
    EXPECT_NEAR(bounds.right(), left ? 326 : 316, kRoundedTip);
    EXPECT_TRUE(outline.contains(body.center()));
    EXPECT_FALSE(outline.contains(body.topLeft() + QPointF(1, 1)));
  }
  EXPECT_EQ(arrowOutline(body, {body.toRect(), std::nullopt, 0}).boundingRect(), body);
}

}  // namespace
}  // namespace quillmont
