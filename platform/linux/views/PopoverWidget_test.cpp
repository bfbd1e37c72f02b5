#include "platform/linux/views/PopoverWidget.h"

#include "platform/linux/desktop/ArrowWindow.h"
#include "platform/linux/views/MountTest.h"

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::kLabel;
using testing::MountTest;

class PopoverOnAView : public MountTest {
 protected:
  PopoverOnAView() {
    mount->widget()->move(300, 300);
    apply({insertion(1, NativeButton{}, {280, 360, 24, 24}),
           insertion(2, NativeSwitch{false, Color::cyan}, {0, 0, 38, 22})});
  }

  std::vector<ViewChange> opening() {
    return {insertion(3, NativePopover{RectEdge::maxY}, {0, 0, 140, 65}, 1),
            insertion(4, NativeButton{}, {0, 0, 140, 32}, 3),
            insertion(5, kLabel, {30, 8, 80, 16}, 4),
            insertion(6, NativeButton{}, {0, 33, 140, 32}, 3)};
  }

  ArrowWindow* window() { return as<ArrowWindow>(3); }
};

TEST_F(PopoverOnAView, OpensOnItsAnchorWithItsContent) {
  apply(opening());
  ASSERT_NE(window(), nullptr);
  EXPECT_TRUE(window()->isVisible());
  EXPECT_TRUE(window()->isWindow());
  EXPECT_EQ(widget(4)->window(), window());
  EXPECT_EQ(widget(4)->parentWidget()->size(), QSize(140, 65));
  EXPECT_LT(window()->geometry().top(), widget(1)->mapToGlobal(QPoint()).y());
  QTest::mouseClick(widget(4), Qt::LeftButton);
  EXPECT_THAT(actions.take(), ElementsAre("press 4"));
}

TEST_F(PopoverOnAView, FollowsItsContentsSizeAndItsAnchor) {
  apply(opening());
  const auto before = window()->geometry();
  apply({SetViewFrame{3, {0, 0, 140, 105}}});
  EXPECT_EQ(window()->height(), before.height() + 40);
  apply({SetViewFrame{1, {180, 360, 24, 24}}});
  EXPECT_EQ(window()->geometry().center().x(), before.center().x() - 100);
}

TEST_F(PopoverOnAView, GoesWithItsView) {
  apply(opening());
  const QPointer<QWidget> open = window();
  remove(3);
  EXPECT_FALSE(open && open->isVisible());
  EXPECT_EQ(widget(4), nullptr);
  settle();
  EXPECT_TRUE(open.isNull());
  EXPECT_THAT(actions.take(), IsEmpty());
}

TEST_F(PopoverOnAView, GoesWithItsAnchor) {
  apply(opening());
  const QPointer<QWidget> open = window();
  remove(1);
  settle();
  EXPECT_TRUE(open.isNull());
}

TEST_F(PopoverOnAView, IsDismissedByAPressElsewhereWhichIsNotLost) {
  apply(opening());
  QTest::mouseClick(widget(2), Qt::LeftButton);
  EXPECT_THAT(actions.take(), ElementsAre("dismiss 3", "toggle 2 on"));
}

TEST_F(PopoverOnAView, ItsAnchorHasItsOwnWay) {
  apply(opening());
  QTest::mouseClick(widget(1), Qt::LeftButton);
  EXPECT_THAT(actions.take(), ElementsAre("press 1"));
}

TEST_F(PopoverOnAView, APressInsideDoesNotDismissIt) {
  apply(opening());
  QTest::mouseClick(widget(6), Qt::LeftButton);
  QTest::mouseClick(window(), Qt::LeftButton);
  EXPECT_THAT(actions.take(), ElementsAre("press 6"));
}

TEST_F(PopoverOnAView, EscapeDismissesIt) {
  apply(opening());
  QTest::keyClick(widget(4), Qt::Key_Escape);
  EXPECT_THAT(actions.take(), ElementsAre("dismiss 3"));
}

TEST_F(PopoverOnAView, IsDismissedAndClosedWithThePanel) {
  apply(opening());
  mount->widget()->hide();
  EXPECT_THAT(actions.take(), ElementsAre("dismiss 3"));
  EXPECT_FALSE(window()->isVisible());
  mount->widget()->show();
  EXPECT_FALSE(window()->isVisible());
}

TEST_F(PopoverOnAView, WaitsForAPanelThatIsHidden) {
  mount->widget()->hide();
  apply(opening());
  EXPECT_FALSE(window()->isVisible());
  mount->widget()->show();
  EXPECT_TRUE(window()->isVisible());
  EXPECT_THAT(actions.take(), IsEmpty());
}

TEST_F(PopoverOnAView, APressInsideMayCloseIt) {
  apply(opening());
  actions.onAction = [&] {
    remove(3);
    settle();
  };
  QTest::mouseClick(widget(4), Qt::LeftButton);
  EXPECT_THAT(actions.take(), ElementsAre("press 4"));
  settle();
  EXPECT_EQ(widget(3), nullptr);
}

TEST_F(PopoverOnAView, ItsOwnDismissalMayCloseIt) {
  apply(opening());
  actions.onAction = [&] { remove(3); };
  QTest::keyClick(widget(4), Qt::Key_Escape);
  settle();
  EXPECT_EQ(widget(3), nullptr);
  actions.onAction = [] {};
  apply(opening());
  actions.onAction = [&] { remove(3); };
  mount->widget()->hide();
  settle();
  EXPECT_EQ(widget(3), nullptr);
}

}  // namespace
}  // namespace quillmont
