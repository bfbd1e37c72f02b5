#include "platform/linux/views/symbols.h"

#include <gtest/gtest.h>

#include <QImage>
#include <cmath>
#include <limits>

namespace quillmont {
namespace {

const std::vector<std::string> kNames = {
    "opticaldiscdrive", "opticaldiscdrive.fill", "lock.fill", "lock.open.fill",
    "eject.fill",       "gearshape.fill",        "power",     "trash",
};

QImage drawn(const std::string& name, QSizeF size, FontWeight weight = FontWeight::regular,
             const QColor& color = Qt::black, double scale = 1) {
  QImage image((size * scale).toSize() + QSize(2, 2), QImage::Format_ARGB32_Premultiplied);
  image.setDevicePixelRatio(scale);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  drawSymbol(painter, name, QRectF(QPointF(), size), weight, color);
  return image;
}

double ink(const QImage& image) {
  double sum = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) sum += qAlpha(image.pixel(x, y)) / 255.0;
  }
  return sum;
}

/// How many pixels are neither empty nor full.
int blurredPixels(const QImage& image) {
  int count = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      const int alpha = qAlpha(image.pixel(x, y));
      count += alpha > 8 && alpha < 247 ? 1 : 0;
    }
  }
  return count;
}

TEST(Symbols, AreAFifthHigherThanTheLettersAndHaveWidthsOfTheirOwn) {
  for (const auto& name : kNames) {
    EXPECT_DOUBLE_EQ(symbolExtent(name, 20).height(), 24) << name;
    EXPECT_GT(symbolExtent(name, 20).width(), 12) << name;
  }
  EXPECT_LT(symbolExtent("lock.fill", 20).width(), symbolExtent("opticaldiscdrive", 20).width());
}

TEST(Symbols, EveryOneFillsItsExtentAndNothingBeyond) {
  for (const auto& name : kNames) {
    for (const double points : {11.0, 14.0, 16.0, 24.0, 40.0}) {
      const auto size = symbolExtent(name, points);
      const auto alone = drawn(name, size);
      EXPECT_GT(ink(alone), size.width() * size.height() * 0.12) << name << " at " << points;
      QImage wide(200, 200, QImage::Format_ARGB32_Premultiplied);
      wide.fill(Qt::transparent);
      QPainter painter(&wide);
      drawSymbol(painter, name, QRectF(QPointF(50, 50), size), FontWeight::bold, Qt::black);
      painter.setCompositionMode(QPainter::CompositionMode_Clear);
      painter.fillRect(QRectF(QPointF(49, 49), size + QSizeF(2, 2)), Qt::black);
      EXPECT_EQ(ink(wide), 0) << name << " at " << points;
    }
  }
}

TEST(Symbols, LookDifferentFromEachOther) {
  for (const auto& name : kNames) {
    for (const auto& other : kNames) {
      if (name == other) continue;
      EXPECT_NE(drawn(name, {48, 48}), drawn(other, {48, 48})) << name << ' ' << other;
    }
  }
}

TEST(Symbols, AnUnknownNameIsAnEmptySquare) {
  const auto image = drawn("no.such.symbol", symbolExtent("no.such.symbol", 20));
  EXPECT_GT(ink(image), 30);
  EXPECT_EQ(qAlpha(image.pixel(image.rect().center())), 0);
  EXPECT_EQ(image, drawn("", symbolExtent("", 20)));
}

TEST(Symbols, AHeavierWeightDrawsThickerLines) {
  for (const char* const name : {"opticaldiscdrive", "power", "trash", "lock.fill"}) {
    const auto size = symbolExtent(name, 40);
    EXPECT_GT(ink(drawn(name, size, FontWeight::bold)), ink(drawn(name, size)) * 1.05) << name;
  }
}

TEST(Symbols, LinesThatOverlapAreNoDarkerWhereTheyMeet) {
  for (const auto& name : kNames) {
    const auto image = drawn(name, {60, 60}, FontWeight::regular, QColor(0, 0, 0, 100));
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) ASSERT_LE(qAlpha(image.pixel(x, y)), 101) << name;
    }
  }
}

TEST(Symbols, StraightEdgesLieBetweenPixelsAtAnySizeAndPlace) {
  // A bar of the ejecting triangle, drawn at any place, is not smeared over two rows of pixels.
  for (const double points : {11.0, 13.0, 16.0, 24.0}) {
    const auto size = symbolExtent("unknown", points);
    for (const double place : {0.0, 0.3, 0.7}) {
      QImage image(60, 60, QImage::Format_ARGB32_Premultiplied);
      image.fill(Qt::transparent);
      QPainter painter(&image);
      drawSymbol(painter, "unknown", QRectF(QPointF(4 + place, 4 + place), size),
                 FontWeight::regular, Qt::black);
      painter.end();
      EXPECT_EQ(blurredPixels(image), 0) << points << " at " << place;
    }
  }
}

TEST(Symbols, OnASharperScreenTheyHaveAsManyMorePixels) {
  const auto size = symbolExtent("gearshape.fill", 16);
  const double once = ink(drawn("gearshape.fill", size));
  const double twice = ink(drawn("gearshape.fill", size, FontWeight::regular, Qt::black, 2));
  EXPECT_NEAR(twice / once, 4, 0.1);
}

TEST(Symbols, ABoxWithoutRoomTakesNothing) {
  QImage image(10, 10, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  drawSymbol(painter, "power", QRectF(), FontWeight::regular, Qt::black);
  drawSymbol(painter, "power", QRectF(8, 2, -5, 6), FontWeight::regular, Qt::black);
  drawSymbol(painter, "power", QRectF(0, 0, nan, nan), FontWeight::regular, Qt::black);
  EXPECT_EQ(ink(image), 0);
}

}  // namespace
}  // namespace quillmont
