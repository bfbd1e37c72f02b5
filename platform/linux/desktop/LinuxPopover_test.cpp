#include "platform/linux/desktop/LinuxPopover.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <memory>
#include <vector>

#include "platform/linux/desktop/LinuxStatusItem.h"
#include "platform/linux/views/theme.h"
#include "platform/view/View.h"
#include "tests/support/ManualTime.h"

namespace quillmont {
namespace {

/// A popover with a coloured area in it, and a status item that no bar shows.
struct Fixture {
  testing::ManualClock clock;
  testing::ManualRunLoop runLoop{clock};
  Appearance appearance;
  LinuxStatusItem item{[] { return false; }};
  std::vector<bool> closings;
  LinuxPopover popover{appearance, [this](bool byLeaving) { closings.push_back(byLeaving); }};

  void fill(double width, double height) {
    popover.setContent(std::make_shared<HostingController>(
        Fill(Color::cyan).frame({.width = width, .height = height}), runLoop));
  }

  static std::vector<ArrowWindow*> windows() {
    std::vector<ArrowWindow*> result;
    for (auto* widget : QApplication::topLevelWidgets()) {
      if (auto* window = dynamic_cast<ArrowWindow*>(widget)) result.push_back(window);
    }
    return result;
  }
};

TEST(LinuxPopover, ShowsItsContentInItsOwnSize) {
  Fixture f;
  f.fill(240, 160);
  EXPECT_FALSE(f.popover.isShown());
  f.popover.show(*f.item.button(), RectEdge::minY);
  EXPECT_TRUE(f.popover.isShown());
  ASSERT_EQ(f.windows().size(), 1u);
  const auto image = f.windows().front()->grab().toImage();
  int coloured = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      coloured += image.pixelColor(x, y) == colorNow(Color::cyan) ? 1 : 0;
    }
  }
  // All of it but what the round corners take.
  EXPECT_LE(coloured, 240 * 160);
  EXPECT_GE(coloured, 240 * 160 - 4 * kBodyRadius * kBodyRadius);
}

TEST(LinuxPopover, ClosesOnceWhenItIsTold) {
  Fixture f;
  f.fill(240, 160);
  f.popover.performClose(nullptr);
  EXPECT_TRUE(f.closings.empty());
  f.popover.show(*f.item.button(), RectEdge::minY);
  f.popover.performClose(nullptr);
  f.popover.performClose(nullptr);
  EXPECT_FALSE(f.popover.isShown());
  EXPECT_EQ(f.closings, std::vector{false});
}

TEST(LinuxPopover, OpensAgain) {
  Fixture f;
  f.fill(240, 160);
  for (int round = 0; round < 3; ++round) {
    f.popover.show(*f.item.button(), RectEdge::minY);
    EXPECT_TRUE(f.popover.isShown());
    f.popover.performClose(nullptr);
    EXPECT_FALSE(f.popover.isShown());
  }
}

TEST(LinuxPopover, EscapeClosesATransientOneOnly) {
  Fixture f;
  f.fill(240, 160);
  f.popover.show(*f.item.button(), RectEdge::minY);
  f.windows().front()->onCloseRequest();
  EXPECT_TRUE(f.popover.isShown());
  f.popover.setBehavior(PopoverBehavior::transient);
  f.windows().front()->onCloseRequest();
  EXPECT_FALSE(f.popover.isShown());
}

TEST(LinuxPopover, WithoutContentItDoesNotComeUp) {
  Fixture f;
  f.popover.show(*f.item.button(), RectEdge::minY);
  EXPECT_FALSE(f.popover.isShown());
  f.popover.performClose(nullptr);
  f.popover.setContent(nullptr);
  EXPECT_TRUE(f.windows().empty());
}

TEST(LinuxPopover, TakesOtherContent) {
  Fixture f;
  f.fill(240, 160);
  f.popover.show(*f.item.button(), RectEdge::minY);
  const auto before = f.windows().front()->size();
  f.fill(260, 160);
  f.popover.show(*f.item.button(), RectEdge::minY);
  ASSERT_EQ(f.windows().size(), 1u);
  EXPECT_EQ(f.windows().front()->size(), before + QSize(20, 0));
}

TEST(LinuxPopover, ContentMayOutliveIt) {
  testing::ManualClock clock;
  testing::ManualRunLoop runLoop{clock};
  Appearance appearance;
  auto content = std::make_shared<HostingController>(
      Fill(Color::red).frame({.width = 10, .height = 10}), runLoop);
  {
    LinuxPopover popover(appearance, [](bool) {});
    popover.setContent(content);
  }
  content->setVisible(true);
  runLoop.runTasks();
}

}  // namespace
}  // namespace quillmont
