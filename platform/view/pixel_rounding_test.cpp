#include <gtest/gtest.h>

#include <cmath>

#include "platform/view/View.h"
#include "platform/view/native_tree.h"
#include "tests/support/LaidOut.h"

namespace quillmont {
namespace {

using testing::box;
using testing::built;
using testing::FakeMetrics;

constexpr double kScales[] = {1, 1.25, 1.5, 2};
constexpr double kExact = 1e-9;

NativeNode treeOf(const View& view, double scale) {
  FakeMetrics metrics;
  metrics.pixelsPerPoint = scale;
  TextSizes texts;
  auto root = built(view);
  layOut(root, metrics, texts);
  return nativeTree(root, scale);
}

/// A column of rows that lie at all kinds of fractions of a pixel.
View manyFractions() {
  Views rows;
  for (int i = 0; i < 40; ++i) {
    const auto text = VerbatimText(std::string(static_cast<std::size_t>(i % 7 + 1), 'x'))
                          .font(Font::system(9 + 0.3 * i));
    rows.push_back(HStack({.spacing = 0.7},
                          {text, Button([] {}, text.padding(1.3)).help("tip"), text.opacity(0.5)}));
  }
  return VStack({.spacing = 1.1}, rows).padding(3.3);
}

bool isWhole(double points, double scale) {
  return std::abs(points * scale - std::round(points * scale)) < kExact;
}

void expectWholePixels(const NativeNode& node, double scale) {
  EXPECT_TRUE(isWhole(node.frame.x, scale)) << node.frame.x;
  EXPECT_TRUE(isWhole(node.frame.y, scale)) << node.frame.y;
  EXPECT_TRUE(isWhole(node.frame.width, scale)) << node.frame.width;
  EXPECT_TRUE(isWhole(node.frame.height, scale)) << node.frame.height;
  for (const auto& child : node.children) expectWholePixels(*child, scale);
}

TEST(PixelRounding, EveryFrameBeginsAndEndsAtAPixel) {
  for (const double scale : kScales) {
    SCOPED_TRACE(scale);
    expectWholePixels(treeOf(manyFractions(), scale), scale);
  }
}

TEST(PixelRounding, NeighboursThatTouchStillTouch) {
  for (const double scale : kScales) {
    SCOPED_TRACE(scale);
    Views cells;
    for (int i = 0; i < 50; ++i) cells.push_back(box(Color::red, 3.37, 2));
    const auto row = treeOf(HStack({.spacing = 0}, cells).padding(0.9), scale);
    for (std::size_t i = 1; i < row.children.size(); ++i) {
      EXPECT_NEAR(row.children[i - 1]->frame.maxX(), row.children[i]->frame.x, kExact);
    }
    EXPECT_NEAR(row.children.back()->frame.maxX(), 0.9 + 50 * 3.37, 1 / scale);
  }
}

TEST(PixelRounding, ChildrenStayWhereTheyAreInANativeParent) {
  // In the panel's coordinates both come to the same pixel, inside of a button or beside one.
  for (const double scale : kScales) {
    SCOPED_TRACE(scale);
    const auto inside = box(Color::red, 5.2, 5.2).padding(1.7);
    const auto tree = treeOf(Button([] {}, inside).background(inside).padding(0.6), scale);
    const auto& plain = *tree.children[0];
    const auto& button = *tree.children[1];
    EXPECT_NEAR(button.frame.x + button.children[0]->frame.x, plain.frame.x, kExact);
    EXPECT_NEAR(button.children[0]->frame.width, plain.frame.width, kExact);
  }
}

TEST(PixelRounding, TextIsNeverNarrowerThanItWasMeasured) {
  for (const double scale : kScales) {
    for (int length = 1; length < 45; ++length) {
      for (int quarters = 0; quarters < 40; ++quarters) {
        const auto text = VerbatimText(std::string(static_cast<std::size_t>(length), 'x'));
        const auto tree = treeOf(
            text.frame({.width = 300 + quarters / 4.0}).padding(Edges::leading, 0.1 * quarters),
            scale);
        ASSERT_GE(tree.children[0]->frame.width, 6.5 * length - kExact)
            << length << " characters at scale " << scale << ", " << quarters;
      }
    }
  }
}

TEST(PixelRounding, HalfAPixelGoesUp) {
  EXPECT_EQ(treeOf(box(Color::red, 4, 4).padding(0.5), 1).children[0]->frame, (Rect{1, 1, 4, 4}));
  EXPECT_EQ(treeOf(box(Color::red, 4, 4).padding(0.5), 2).children[0]->frame,
            (Rect{0.5, 0.5, 4, 4}));
  EXPECT_EQ(treeOf(box(Color::red, 4, 4).padding(0.4), 1).children[0]->frame, (Rect{0, 0, 4, 4}));
}

TEST(PixelRounding, ScrollsContentAndPopoversHaveWholeSizes) {
  const Binding<bool> on([] { return true; }, [](bool) {});
  const auto scroll = ScrollView(box(Color::red, 10.3, 20.6));
  const auto view = scroll.popover(on, RectEdge::maxY, [] { return box(Color::green, 7.4, 7.6); });
  const auto anchor = *treeOf(view, 1).children[0];
  EXPECT_EQ(std::get<NativeScroll>(anchor.children[0]->properties.content).contentSize,
            (Size{10, 21}));
  EXPECT_EQ(anchor.children[1]->frame, (Rect{0, 0, 7, 8}));
}

}  // namespace
}  // namespace quillmont
