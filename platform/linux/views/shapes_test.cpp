#include "platform/linux/views/shapes.h"

#include <gtest/gtest.h>

#include <QImage>
#include <cmath>

namespace quillmont {
namespace {

const NativeShape kCard{.kind = NativeShape::Kind::roundedRectangle,
                        .cornerRadius = 8,
                        .fill = Color::white,
                        .stroke = {},
                        .shadow = {}};

QImage drawn(const NativeShape& shape, const QRectF& rect) {
  QImage image(120, 80, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  drawShape(painter, shape, rect);
  return image;
}

int alphaAt(const QImage& image, int x, int y) {
  return qAlpha(image.pixel(x, y));
}

TEST(Shapes, ContinuousCornersBeginEarlierThanCircularOnes) {
  const auto path = continuousRectangle({0, 0, 100, 60}, 10);
  EXPECT_FALSE(path.contains(QPointF(11, 0.04)));  // a circle would lie on the edge from 10 on
  EXPECT_TRUE(path.contains(QPointF(15, 0.04)));
}

TEST(Shapes, ContinuousCornersAreAsDeepAsCircularOnes) {
  const auto path = continuousRectangle({0, 0, 100, 60}, 10);
  const double depth = 10 * (1 - std::sqrt(0.5));
  EXPECT_FALSE(path.contains(QPointF(depth - 0.02, depth - 0.02)));
  EXPECT_TRUE(path.contains(QPointF(depth + 0.02, depth + 0.02)));
  EXPECT_EQ(path.boundingRect(), QRectF(0, 0, 100, 60));
}

TEST(Shapes, ARadiusWithoutRoomMakesACircle) {
  const auto path = continuousRectangle({0, 0, 40, 40}, 500);
  for (const double angle : {0.0, 0.4, 0.785, 1.2}) {
    const QPointF ray(std::cos(angle), std::sin(angle));
    EXPECT_TRUE(path.contains(QPointF(20, 20) + ray * 19.9)) << angle;
    EXPECT_FALSE(path.contains(QPointF(20, 20) + ray * 20.1)) << angle;
  }
}

TEST(Shapes, ACircleIsRoundInAnyFrame) {
  const NativeShape circle{.kind = NativeShape::Kind::circle, .fill = Color::green};
  EXPECT_EQ(outlineOf(circle, {0, 0, 40, 20}).boundingRect(), QRectF(10, 0, 20, 20));
}

TEST(Shapes, AStrokeLiesHalfOutsideTheOutline) {
  auto shape = kCard;
  shape.fill = {};
  shape.stroke = Stroke{Color::black, 4};
  EXPECT_EQ(reachOf(shape), QMarginsF(2, 2, 2, 2));
  const auto image = drawn(shape, {20, 20, 60, 40});
  EXPECT_EQ(alphaAt(image, 50, 18), 255);
  EXPECT_EQ(alphaAt(image, 50, 21), 255);
  EXPECT_EQ(alphaAt(image, 50, 16), 0);
  EXPECT_EQ(alphaAt(image, 50, 23), 0);
}

TEST(Shapes, AShadowFallsDownwardsAndFades) {
  auto shape = kCard;
  shape.shadow = Shadow{Color::black.opacity(0.5), 2, {0, 3}};
  const auto reach = reachOf(shape);
  EXPECT_GT(reach.bottom(), reach.top());
  const auto image = drawn(shape, {20, 20, 60, 40});
  EXPECT_GT(alphaAt(image, 50, 61), alphaAt(image, 50, 64));
  EXPECT_GT(alphaAt(image, 50, 64), 0);
  EXPECT_GT(alphaAt(image, 50, 61), alphaAt(image, 50, 18));
  EXPECT_EQ(alphaAt(image, 50, 60 + static_cast<int>(std::ceil(reach.bottom())) + 2), 0);
}

TEST(Shapes, AFaintFillCastsAFaintShadow) {
  auto shape = kCard;
  shape.shadow = Shadow{Color::black, 2, {0, 8}};
  const int full = alphaAt(drawn(shape, {20, 20, 60, 40}), 50, 63);
  shape.fill = Color::white.opacity(0.25);
  const int faint = alphaAt(drawn(shape, {20, 20, 60, 40}), 50, 63);
  EXPECT_NEAR(faint, full / 4, 2);
  EXPECT_GT(faint, 20);
}

TEST(Shapes, AClearFillPaintsNothing) {
  auto shape = kCard;
  shape.fill = Color::clear;
  EXPECT_EQ(alphaAt(drawn(shape, {20, 20, 60, 40}), 50, 40), 0);
}

TEST(Shapes, AFrameWithoutRoomIsNoTrouble) {
  auto shape = kCard;
  shape.shadow = Shadow{Color::black, 2, {0, 1}};
  shape.stroke = Stroke{Color::red, 0};
  drawn(shape, {20, 20, 0, 0});
  EXPECT_EQ(alphaAt(drawn(shape, {0, 0, 0, 0}), 60, 40), 0);
}

}  // namespace
}  // namespace quillmont
