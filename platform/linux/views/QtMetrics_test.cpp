#include "platform/linux/views/QtMetrics.h"

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <cmath>

#include "platform/linux/views/symbols.h"

namespace quillmont {
namespace {

const Font kBody = Font::body;

TEST(QtMetrics, ATextIsAsWideAsItNeedsInWholePixels) {
  const QtMetrics metrics;
  const auto narrow = metrics.textSize("1 分钟", kBody, {}, {});
  const auto wide = metrics.textSize("15 分钟", kBody, {}, {});
  EXPECT_LT(narrow.width, wide.width);
  EXPECT_EQ(wide.width * metrics.scale(), std::round(wide.width * metrics.scale()));
  EXPECT_EQ(wide.height, 16);
  EXPECT_EQ(metrics.textSize("15 分钟", kBody, 500, {}), wide);
  EXPECT_EQ(metrics.textSize("15 分钟", kBody, wide.width, 1), wide);
}

TEST(QtMetrics, ABolderTextIsWider) {
  const QtMetrics metrics;
  EXPECT_GT(metrics.textSize("Installer", Font::headline, {}, {}).width,
            metrics.textSize("Installer", kBody, {}, {}).width);
}

TEST(QtMetrics, ANarrowTextIsHigher) {
  const QtMetrics metrics;
  const std::string text = "one two three four five six";
  const auto whole = metrics.textSize(text, kBody, {}, {});
  const auto wrapped = metrics.textSize(text, kBody, whole.width / 2, {});
  EXPECT_GE(wrapped.height, 32);
  EXPECT_LE(wrapped.width, whole.width / 2);
  EXPECT_EQ(metrics.textSize(text, kBody, whole.width / 2, 1).height, 16);
}

TEST(QtMetrics, AnEmptyTextHasTheHeightOfALine) {
  EXPECT_EQ(QtMetrics().textSize("", kBody, {}, {}), (Size{0, 16}));
}

TEST(QtMetrics, BytesThatAreNoTextHaveASizeToo) {
  EXPECT_GT(QtMetrics().textSize("\xff\xfe volume", kBody, {}, {}).width, 0);
}

TEST(QtMetrics, SymbolsAreAsLargeAsTheyAreDrawn) {
  const auto size = QtMetrics().symbolSize("opticaldiscdrive", Font::system(24));
  EXPECT_EQ(size.width, symbolExtent("opticaldiscdrive", 24).width());
  EXPECT_EQ(size.height, symbolExtent("opticaldiscdrive", 24).height());
}

TEST(QtMetrics, ACheckboxHasRoomForItsBoxAndItsTitle) {
  const QtMetrics metrics;
  const auto title = metrics.textSize("开机自动启动", Font::caption, {}, {});
  const auto checkbox = metrics.checkboxSize("开机自动启动", Font::caption);
  EXPECT_EQ(checkbox.width, title.width + 20);
  EXPECT_EQ(checkbox.height, 14);
  EXPECT_EQ(metrics.checkboxSize("", Font::caption), (Size{14, 14}));
}

TEST(QtMetrics, SegmentsAreAllAsWideAsTheWidestNeeds) {
  const QtMetrics metrics;
  const auto one = metrics.segmentsSize({"1小时"});
  EXPECT_EQ(metrics.segmentsSize({"1分", "1小时", "5分"}), (Size{3 * one.width, one.height}));
  EXPECT_EQ(metrics.segmentsSize({}).width, 0);
}

TEST(QtMetrics, TheScaleIsThatOfTheScreen) {
  EXPECT_EQ(QtMetrics().scale(), qGuiApp->devicePixelRatio());
  QWidget widget;
  EXPECT_EQ(QtMetrics(&widget).scale(), widget.devicePixelRatioF());
}

}  // namespace
}  // namespace quillmont
