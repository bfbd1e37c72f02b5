#include "platform/linux/views/ScrollWidget.h"

#include <QScrollBar>
#include <QWheelEvent>

#include "platform/linux/views/MountTest.h"
#include "platform/linux/views/OverlayScroller.h"

namespace quillmont {
namespace {

using testing::kLabel;
using testing::MountTest;

class Scrolling : public MountTest {
 protected:
  Scrolling() {
    insert(1, NativeScroll{{296, 1000}}, {0, 0, 320, 200});
    insert(2, kLabel, {12, 500, 100, 16}, 1);
  }

  QScrollBar& bar() { return *as<QScrollArea>(1)->verticalScrollBar(); }

  void wheel(int notches) {
    const QPointF middle(160, 100);
    QWheelEvent event(middle, widget(1)->mapToGlobal(middle), {}, {0, 120 * notches}, Qt::NoButton,
                      {}, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(as<QScrollArea>(1)->viewport(), &event);
  }

  OverlayScroller* scroller() {
    for (auto* const child : widget(1)->findChildren<QWidget*>()) {
      if (auto* const found = dynamic_cast<OverlayScroller*>(child)) return found;
    }
    return nullptr;
  }
};

TEST_F(Scrolling, TheWheelMovesTheContent) {
  wheel(-2);
  EXPECT_GT(bar().value(), 0);
  EXPECT_EQ(widget(2)->mapTo(widget(1), QPoint()).y(), 500 - bar().value());
  wheel(100);
  EXPECT_EQ(bar().value(), 0);
}

TEST_F(Scrolling, TheOffsetIsKeptWhileTheContentChanges) {
  bar().setValue(300);
  update(1, {NativeScroll{{296, 1200}}});
  insert(3, kLabel, {12, 1100, 100, 16}, 1);
  remove(2);
  apply({SetViewFrame{1, {0, 10, 320, 190}}});
  settle();
  EXPECT_EQ(bar().value(), 300);
}

TEST_F(Scrolling, TheOffsetIsNoMoreThanThereIsContentFor) {
  bar().setValue(800);
  update(1, {NativeScroll{{296, 450}}});
  EXPECT_EQ(bar().value(), 250);
  update(1, {NativeScroll{{296, 100}}});
  EXPECT_EQ(bar().value(), 0);
}

TEST_F(Scrolling, ContentThatFitsDoesNotMoveAndHasNoBar) {
  update(1, {NativeScroll{{296, 200}}});
  wheel(-3);
  EXPECT_EQ(bar().value(), 0);
  ASSERT_NE(scroller(), nullptr);
  EXPECT_FALSE(scroller()->isVisible());
}

TEST_F(Scrolling, TheBarTakesNoRoomFromTheContent) {
  EXPECT_EQ(as<QScrollArea>(1)->viewport()->size(), widget(1)->size());
  EXPECT_TRUE(scroller()->isVisible());
}

TEST_F(Scrolling, TheBarCanBeDragged) {
  const int x = scroller()->width() - 4;
  QTest::mousePress(scroller(), Qt::LeftButton, {}, {x, 10});
  QTest::mouseMove(scroller(), {x, 60});
  const int halfWay = bar().value();
  EXPECT_GT(halfWay, 200);
  QTest::mouseMove(scroller(), {x, 2000});
  EXPECT_EQ(bar().value(), bar().maximum());
  QTest::mouseRelease(scroller(), Qt::LeftButton, {}, {x, 200});
  QTest::mouseMove(scroller(), {x, 10});
  EXPECT_EQ(bar().value(), bar().maximum());
}

TEST_F(Scrolling, APressBesideTheThumbScrollsAPage) {
  QTest::mouseClick(scroller(), Qt::LeftButton, {}, {5, 190});
  EXPECT_EQ(bar().value(), 200);
  QTest::mouseClick(scroller(), Qt::LeftButton, {}, {5, 4});
  EXPECT_EQ(bar().value(), 0);
}

}  // namespace
}  // namespace quillmont
