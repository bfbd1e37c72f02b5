// The keyboard's way through the panel.
#include <QAbstractButton>
#include <QScrollBar>

#include "platform/linux/views/MountTest.h"
#include "platform/linux/views/ScrollWidget.h"

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::kEjectSymbol;
using testing::kLabel;
using testing::MountTest;

class Keyboard : public MountTest {
 protected:
  Keyboard() {
    mount->widget()->activateWindow();
    settle();
  }

  /// Which views Tab comes by from `from` on, until it comes by one again.
  std::vector<ViewId> round(ViewId from, const std::vector<ViewId>& views,
                            Qt::Key key = Qt::Key_Tab) {
    widget(from)->setFocus(Qt::TabFocusReason);
    std::vector<ViewId> result{from};
    for (;;) {
      QTest::keyClick(mount->widget()->focusWidget(), key);
      const auto* const focused = mount->widget()->focusWidget();
      ViewId now = 0;
      for (const auto id : views) {
        if (widget(id) == focused || widget(id)->isAncestorOf(focused)) now = id;
      }
      if (now == from || result.size() > 20) return result;
      result.push_back(now);
    }
  }

  QWidget* ring() {
    for (auto* const child : mount->widget()->window()->findChildren<QWidget*>()) {
      if (child->testAttribute(Qt::WA_TransparentForMouseEvents) && child->isVisible() &&
          child != widget(1) && mount->widget()->focusWidget() &&
          child->geometry().contains(mount->widget()->focusWidget()->geometry()) &&
          child->width() == mount->widget()->focusWidget()->width() + 6) {
        return child;
      }
    }
    return nullptr;
  }
};

TEST_F(Keyboard, TabGoesThroughTheViewsInTheirOrder) {
  insert(1, NativeSwitch{false, Color::cyan}, {280, 0, 38, 22});
  insert(5, NativeButton{}, {280, 380, 24, 24});
  apply({InsertView{2, kRootView, 1, {NativeGroup{}}, {0, 30, 320, 100}},
         insertion(3, NativeButton{}, {0, 0, 24, 24}, 2),
         insertion(4, NativeSegments{{"1", "5"}, 1}, {0, 60, 100, 24}, 2)});
  const std::vector<ViewId> all{1, 3, 4, 5};
  EXPECT_THAT(round(1, all), ElementsAre(1, 3, 4, 5));
  EXPECT_THAT(round(5, all, Qt::Key_Backtab), ElementsAre(5, 4, 3, 1));
}

TEST_F(Keyboard, TabFollowsAMove) {
  for (ViewId id = 1; id <= 3; ++id)
    insert(id, NativeButton{}, {0, 30.0 * static_cast<double>(id), 24, 24});
  EXPECT_THAT(round(1, {1, 2, 3}), ElementsAre(1, 2, 3));
  apply({MoveView{3, 0}});
  EXPECT_THAT(round(3, {1, 2, 3}), ElementsAre(3, 1, 2));
}

TEST_F(Keyboard, TheFocusStaysWhereItIsWhileThePanelChanges) {
  for (ViewId id = 1; id <= 3; ++id)
    insert(id, NativeButton{}, {0, 30.0 * static_cast<double>(id), 24, 24});
  widget(2)->setFocus(Qt::TabFocusReason);
  update(2, {NativeButton{}, "Help"});
  apply({MoveView{2, 0}, SetViewFrame{2, {5, 5, 24, 24}}, RemoveView{1}});
  insert(4, NativeButton{}, {0, 200, 24, 24});
  settle();
  EXPECT_EQ(mount->widget()->focusWidget(), widget(2));
}

TEST_F(Keyboard, TheFocusGoesOnWhenItsViewGoes) {
  for (ViewId id = 1; id <= 3; ++id)
    insert(id, NativeButton{}, {0, 30.0 * static_cast<double>(id), 24, 24});
  widget(2)->setFocus(Qt::TabFocusReason);
  remove(2);
  settle();
  EXPECT_EQ(mount->widget()->focusWidget(), widget(3));
}

TEST_F(Keyboard, SpacePressesAndEscapeIsLeftToTheWindow) {
  insert(1, NativeButton{}, {0, 0, 24, 24});
  insert(2, NativeSwitch{false, Color::cyan}, {0, 30, 38, 22});
  insert(3, NativeCheckbox{false, "Launch", {}, {}}, {0, 60, 120, 16});
  insert(4, NativeSegments{{"1", "5"}, 0}, {0, 90, 100, 24});
  for (const ViewId id : {ViewId{1}, ViewId{2}, ViewId{3}, ViewId{4}}) {
    auto* const target = id == 4 ? widget(4)->findChildren<QAbstractButton*>()[1] : widget(id);
    QTest::keyClick(target, Qt::Key_Space);
    EXPECT_EQ(actions.take().size(), 1U) << id;
    QKeyEvent held(QEvent::KeyPress, Qt::Key_Space, {});
    QCoreApplication::sendEvent(target, &held);
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, {});
    escape.accept();
    QCoreApplication::sendEvent(target, &escape);
    EXPECT_FALSE(escape.isAccepted()) << id;
    QTest::keyRelease(target, Qt::Key_Space);
    EXPECT_THAT(actions.take(), IsEmpty()) << id;
  }
}

TEST_F(Keyboard, ArrowsGoThroughTheSegmentsAndSpaceSelects) {
  insert(1, NativeSegments{{"1", "5", "15"}, 0}, {0, 0, 150, 24});
  const auto segments = widget(1)->findChildren<QAbstractButton*>();
  segments[0]->setFocus(Qt::TabFocusReason);
  QTest::keyClick(segments[0], Qt::Key_Left);
  EXPECT_TRUE(segments[0]->hasFocus());
  QTest::keyClick(segments[0], Qt::Key_Right);
  QTest::keyClick(segments[1], Qt::Key_Right);
  QTest::keyClick(segments[2], Qt::Key_Right);
  EXPECT_TRUE(segments[2]->hasFocus());
  EXPECT_THAT(actions.take(), IsEmpty());
  QTest::keyClick(segments[2], Qt::Key_Space);
  EXPECT_THAT(actions.take(), ElementsAre("select 1 2"));
}

TEST_F(Keyboard, TheRingShowsOnlyWhileTheKeyboardIsUsed) {
  insert(1, kLabel, {0, 0, 100, 16});
  insert(2, NativeButton{}, {50, 50, 24, 24});
  insert(3, NativeButton{}, {50, 90, 24, 24});
  widget(2)->setFocus(Qt::OtherFocusReason);
  settle();
  EXPECT_EQ(ring(), nullptr);
  QTest::keyClick(widget(2), Qt::Key_Tab);
  settle();
  ASSERT_NE(ring(), nullptr);
  EXPECT_EQ(ring()->geometry().center(), widget(3)->geometry().center());
  apply({SetViewFrame{3, {150, 90, 24, 24}}});
  settle();
  ASSERT_NE(ring(), nullptr);
  EXPECT_EQ(ring()->geometry().center(), widget(3)->geometry().center());
  QTest::mouseClick(widget(2), Qt::LeftButton);
  settle();
  EXPECT_EQ(ring(), nullptr);
}

TEST_F(Keyboard, WhatTheKeyboardComesToIsScrolledIntoView) {
  insert(1, NativeScroll{{300, 900}}, {0, 0, 320, 200});
  for (ViewId id = 2; id < 20; ++id) {
    insert(id, NativeButton{}, {10, 45.0 * static_cast<double>(id - 2) + 10, 24, 24}, 1);
  }
  auto* const bar = as<QScrollArea>(1)->verticalScrollBar();
  widget(2)->setFocus(Qt::TabFocusReason);
  for (ViewId id = 2; id < 15; ++id) {
    QTest::keyClick(widget(id), Qt::Key_Tab);
    settle();
    const QRect seen(widget(id + 1)->mapTo(widget(1), QPoint()), widget(id + 1)->size());
    EXPECT_TRUE(widget(1)->rect().contains(seen)) << id;
  }
  EXPECT_GT(bar->value(), 300);
}

TEST_F(Keyboard, PagesAreScrolledFromWithinTheList) {
  insert(1, NativeScroll{{300, 900}}, {0, 0, 320, 200});
  insert(2, NativeButton{}, {10, 10, 24, 24}, 1);
  auto* const bar = as<QScrollArea>(1)->verticalScrollBar();
  QTest::keyClick(widget(2), Qt::Key_PageDown);
  EXPECT_EQ(bar->value(), 200);
  QTest::keyClick(widget(2), Qt::Key_End);
  EXPECT_EQ(bar->value(), 700);
  QTest::keyClick(widget(2), Qt::Key_PageUp);
  EXPECT_EQ(bar->value(), 500);
  QTest::keyClick(widget(2), Qt::Key_Home);
  EXPECT_EQ(bar->value(), 0);
}

}  // namespace
}  // namespace quillmont
