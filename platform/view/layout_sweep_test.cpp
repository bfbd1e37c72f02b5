// What holds for every layout, tried on random views and on the pieces of the real panel.

#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/LaidOut.h"
#include "tests/support/RandomViews.h"
#include "tests/support/TestHost.h"
#include "ui/DiskCardView.h"
#include "ui/GearMenu.h"
#include "ui/MainView.h"

namespace quillmont {
namespace {

using testing::expectSameFrames;
using testing::FakeMetrics;
using testing::LaidOut;
using testing::RandomViews;
using testing::TestHost;

/// Goes through a tree that has been laid out and checks every frame against its children's.
class Inspection {
 public:
  static void run(const Element& element) {
    const Rect& frame = element.frame;
    if (std::holds_alternative<ListElement>(element.content)) {
      // Its children are those of the stack around it.
    } else {
      ASSERT_TRUE(std::isfinite(frame.x) && std::isfinite(frame.y));
      ASSERT_TRUE(std::isfinite(frame.width) && std::isfinite(frame.height));
      ASSERT_GE(frame.width, 0);
      ASSERT_GE(frame.height, 0);
    }
    std::visit([&](const auto& content) { check(content, element); }, element.content);
    for (const auto& child : element.children) {
      if (!::testing::Test::HasFailure()) run(child);
    }
  }

 private:
  static constexpr double kExact = 1e-6;

  template <class Other>
  static void check(const Other&, const Element&) {}

  static void collect(const Element& element, std::vector<const Element*>& children) {
    for (const auto& child : element.children) {
      if (std::holds_alternative<ListElement>(child.content)) {
        collect(child, children);
      } else {
        children.push_back(&child);
      }
    }
  }

  static bool isSpacer(const Element& element) {
    return std::holds_alternative<SpacerElement>(element.content);
  }

  static void check(const StackElement& stack, const Element& element) {
    std::vector<const Element*> children;
    collect(element, children);
    const bool row = stack.axis == Axis::horizontal;
    double at = row ? element.frame.x : element.frame.y, broadest = 0;
    for (std::size_t i = 0; i < children.size(); ++i) {
      if (i > 0) {
        const bool besideSpacer = isSpacer(*children[i]) || isSpacer(*children[i - 1]);
        at += stack.spacing ? *stack.spacing : besideSpacer ? 0 : 8;
      }
      const Rect& frame = children[i]->frame;
      ASSERT_NEAR(row ? frame.x : frame.y, at, kExact);
      at = row ? frame.maxX() : frame.maxY();
      broadest = std::max(broadest, row ? frame.height : frame.width);
      row ? checkAligned(stack.alignment.vertical, element.frame.y, element.frame.maxY(), frame.y,
                         frame.maxY())
          : checkAligned(stack.alignment.horizontal, element.frame.x, element.frame.maxX(), frame.x,
                         frame.maxX());
    }
    ASSERT_NEAR(at, row ? element.frame.maxX() : element.frame.maxY(), kExact);
    ASSERT_NEAR(broadest, row ? element.frame.height : element.frame.width, kExact);
  }

  /// Alignments are in the order near, middle, far.
  template <class Alignment>
  static void checkAligned(Alignment alignment, double from, double to, double childFrom,
                           double childTo) {
    const double before = childFrom - from, after = to - childTo;
    if (alignment == Alignment::center) {
      ASSERT_NEAR(before, after, kExact);
    } else {
      ASSERT_NEAR(alignment == static_cast<Alignment>(0) ? before : after, 0, kExact);
    }
  }

  static void check(const PaddingElement& padding, const Element& element) {
    const Rect &outer = element.frame, inner = element.children.front().frame;
    ASSERT_NEAR(inner.x - outer.x, padding.leading, kExact);
    ASSERT_NEAR(inner.y - outer.y, padding.top, kExact);
    ASSERT_NEAR(outer.maxX() - inner.maxX(), padding.trailing, kExact);
    ASSERT_NEAR(outer.maxY() - inner.maxY(), padding.bottom, kExact);
  }

  static void check(const FrameElement& content, const Element& element) {
    const auto& size = content.size;
    const Rect &outer = element.frame, inner = element.children.front().frame;
    ASSERT_EQ(outer.width, size.width.value_or(outer.width));
    ASSERT_EQ(outer.height, size.height.value_or(outer.height));
    ASSERT_TRUE(size.width || outer.width >= inner.width - kExact);
    ASSERT_TRUE(size.height || outer.height >= inner.height - kExact);
    checkAligned(size.alignment.horizontal, outer.x, outer.maxX(), inner.x, inner.maxX());
    checkAligned(size.alignment.vertical, outer.y, outer.maxY(), inner.y, inner.maxY());
  }

  static void check(const LayerElement&, const Element& element) {
    const Rect &outer = element.frame, layer = element.children[1].frame;
    ASSERT_EQ(element.children[0].frame, outer);
    checkAligned(HorizontalAlignment::center, outer.x, outer.maxX(), layer.x, layer.maxX());
    checkAligned(VerticalAlignment::center, outer.y, outer.maxY(), layer.y, layer.maxY());
  }

  static void check(const ScrollElement&, const Element& element) {
    const Rect& content = element.children.front().frame;
    ASSERT_EQ(content.x, 0);
    ASSERT_EQ(content.y, 0);
    ASSERT_EQ(content.width, element.frame.width);
  }

  static void check(const ButtonElement&, const Element& element) {
    ASSERT_EQ(element.children.front().frame, element.frame);
  }

  static void check(const WrapperElement&, const Element& element) {
    ASSERT_EQ(element.children.front().frame, element.frame);
  }
};

TEST(LayoutSweep, EveryFrameFollowsFromItsChildren) {
  for (unsigned seed = 1; seed <= 1000; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    RandomViews views(seed);
    const auto view = views.make(4);
    Inspection::run(LaidOut(view).root);
    Inspection::run(LaidOut(view, views.upTo(400), views.upTo(400)).root);
    ASSERT_FALSE(HasFailure());
  }
}

TEST(LayoutSweep, TheSameViewGivesTheSameFrames) {
  for (unsigned seed = 1; seed <= 200; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const auto view = RandomViews(seed).make(4);
    const LaidOut first(view), second(view);
    expectSameFrames(first.root, second.root);
    LaidOut again(view);
    layOut(again.root, again.metrics, again.texts);
    expectSameFrames(first.root, again.root);
    ASSERT_FALSE(HasFailure());
  }
}

TEST(LayoutSweep, PanelPiecesFitWhateverTheyAreOffered) {
  TestHost system;
  ConfigManager config(system.host());
  const auto daemon = QuillmontDaemon::make(system.host(), config);
  const Binding<std::optional<std::string>> noHover([] { return std::nullopt; }, [](auto) {});
  const Binding<bool> shown([] { return true; }, [](bool) {});
  const DiskImage image{"/a.dmg", "/Volumes/a", std::string(300, 'n'), 65, true, {"Finder"}, false};
  const View pieces[] = {
      MainView(system.host(), *daemon, config),
      DiskCardView{image, noHover, noHover, [] {}, [] {}},
      GearMenu(system.host(), shown),
  };
  for (const auto& piece : pieces) {
    for (int width = 0; width <= 400; width += 5) {
      SCOPED_TRACE(width);
      for (const int height : {0, 1, 20, 47, 200, 400}) {
        Inspection::run(LaidOut(piece, width, height).root);
      }
      ASSERT_FALSE(HasFailure());
    }
  }
}

/// How often texts are measured in `depth` stacks, each of them in the one before.
int measuredInNestedStacks(int depth) {
  View view = VerbatimText("a text that breaks");
  for (int i = 0; i < depth; ++i) {
    const Views children{VerbatimText("beside it on level " + std::to_string(i)), view, Spacer()};
    view = i % 2 == 0 ? HStack(children) : VStack({}, children);
  }
  return LaidOut(view, 120, 300).metrics.measured;
}

TEST(LayoutSweep, NestedStacksDoNotMultiplyTheWork) {
  const int six = measuredInNestedStacks(6), twelve = measuredInNestedStacks(12);
  EXPECT_GT(six, 6);
  EXPECT_LT(twelve, 8 * six);
  EXPECT_LT(twelve, 2000);
}

}  // namespace
}  // namespace quillmont
