// A panel that is redrawn keeps what has not changed; it has to look like one that is drawn anew.

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "platform/view/changes.h"
#include "platform/view/native_tree.h"
#include "tests/support/FakeMount.h"
#include "tests/support/LaidOut.h"
#include "tests/support/RandomViews.h"

namespace quillmont {
namespace {

using testing::expectSameFrames;
using testing::FakeMetrics;
using testing::FakeMount;
using testing::RandomViews;

/// All that a redraw keeps.
class Panel {
 public:
  void show(const View& view, bool onOtherScreen = false) {
    resolver_.resolve(view, root);
    if (onOtherScreen) {
      metrics.pixelsPerPoint = 3 - metrics.pixelsPerPoint;
      texts_.clear();
      forgetLayout(root);
    }
    const Size size = layOut(root, metrics, texts_);
    auto next = nativeTree(root, metrics.scale());
    mount.apply(changesBetween(shown_, next), size);
    shown_ = std::move(next);
  }

  Element root;
  FakeMetrics metrics;
  FakeMount mount;

 private:
  Resolver resolver_{{}, [] {}};
  TextSizes texts_;
  NativeNode shown_;
};

void expectAsIfNew(const Panel& panel, const View& view) {
  Panel other;
  other.metrics.pixelsPerPoint = panel.metrics.pixelsPerPoint;
  other.show(view);
  expectSameFrames(panel.root, other.root);
  EXPECT_EQ(panel.mount.picture(), other.mount.picture());
  EXPECT_EQ(panel.mount.size, other.mount.size);
}

TEST(RedrawSweep, WithOtherTextsLooksLikeANewPanel) {
  for (unsigned seed = 1; seed <= 200; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    Panel panel;
    for (unsigned words = 1; words <= 4; ++words) {
      const auto view = RandomViews(seed, words).make(4);
      panel.show(view);
      expectAsIfNew(panel, view);
    }
    ASSERT_FALSE(HasFailure());
  }
}

TEST(RedrawSweep, WithOneOtherTextAmongManyLooksLikeANewPanel) {
  for (unsigned seed = 1; seed <= 200; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    Panel panel;
    for (const char* const text : {"a", "some words of a text", "", "two\nlines"}) {
      RandomViews views(seed);
      const auto before = views.make(3), after = views.make(3);
      const auto view = HStack({before, VerbatimText(text), after}).frame({.width = 300});
      panel.show(view);
      expectAsIfNew(panel, view);
    }
    ASSERT_FALSE(HasFailure());
  }
}

TEST(RedrawSweep, WithAnotherTextAsWideAsTheOldOneLooksLikeANewPanel) {
  for (unsigned seed = 1; seed <= 200; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    Panel panel;
    for (const char* const text :
         {"aaaaaaaa", "aa aa aa", "aaa aaaa", "aaaaaaaa\naa", "aa\naaaaaaaa"}) {
      RandomViews views(seed);
      const auto before = views.make(2), after = views.make(2);
      const auto changing = VStack({}, {VerbatimText(text), VerbatimText("aaaa").lineLimit(1)});
      const auto view = HStack({before, changing, after}).frame({.width = 40.0 + seed});
      panel.show(view);
      expectAsIfNew(panel, view);
    }
    ASSERT_FALSE(HasFailure());
  }
}

TEST(RedrawSweep, OfAnotherPanelLooksLikeANewOne) {
  Panel panel;
  for (unsigned seed = 1; seed <= 200; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const auto view = RandomViews(seed).make(3);
    panel.show(view);
    expectAsIfNew(panel, view);
    ASSERT_FALSE(HasFailure());
  }
}

TEST(RedrawSweep, OnAnotherScreenLooksLikeANewPanel) {
  for (unsigned seed = 1; seed <= 200; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const auto view = RandomViews(seed).make(4);
    Panel panel;
    panel.show(view);
    panel.show(view, true);
    expectAsIfNew(panel, view);
    ASSERT_FALSE(HasFailure());
  }
}

TEST(RedrawSweep, OfAListInAnotherOrderLooksLikeANewPanel) {
  std::mt19937 random(1);
  Panel panel;
  for (int round = 0; round < 200; ++round) {
    std::vector<KeyedView> rows;
    for (int i = 0; i < 8; ++i) {
      if (random() % 3 == 0) continue;
      const auto key = std::to_string(i);
      rows.push_back({key, VerbatimText("row " + key).padding(i).help("tip " + key)});
    }
    std::shuffle(rows.begin(), rows.end(), random);
    const auto view = VStack({}, {VerbatimText("head"), KeyedList(rows), Divider()});
    panel.show(view);
    expectAsIfNew(panel, view);
    ASSERT_FALSE(HasFailure()) << "round " << round;
  }
}

TEST(RedrawSweep, OfMoreAndFewerViewsLooksLikeANewPanel) {
  Panel panel;
  for (const std::size_t count : {3u, 2u, 3u, 0u, 1u}) {
    SCOPED_TRACE(count);
    const auto view = VStack({}, Views(count, VerbatimText("row"))).background(Color::red);
    panel.show(view);
    expectAsIfNew(panel, view);
  }
}

TEST(RedrawSweep, WithAPopoverAndWithoutLooksLikeANewPanel) {
  Panel panel;
  for (const bool isShown : {false, true, false, true}) {
    SCOPED_TRACE(isShown);
    const Binding<bool> shown([=] { return isShown; }, [](bool) {});
    const auto view = HStack({VerbatimText("anchor").popover(
        shown, RectEdge::maxY, [] { return VerbatimText("in the popover"); })});
    panel.show(view);
    expectAsIfNew(panel, view);
  }
}

}  // namespace
}  // namespace quillmont
