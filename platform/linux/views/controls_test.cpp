// What the user does to controls, and what the program does to them.
#include <QAbstractButton>
#include <QPainter>

#include "platform/linux/views/MountTest.h"
#include "platform/linux/views/theme.h"

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::kEjectSymbol;
using testing::kLabel;
using testing::kSquare;
using testing::MountTest;

class Controls : public MountTest {
 protected:
  void insertCard(double y = 0, ViewId first = 1) {
    insert(first, kSquare, {0, y, 300, 40});
    insert(first + 1, NativeButton{}, {200, y + 8, 24, 24});
    insert(first + 2, kSquare, {0, 0, 24, 24}, first + 1);
    insert(first + 3, kEjectSymbol, {4, 4, 14, 14}, first + 1);
    insert(first + 4, NativeShape{.stroke = Stroke{Color::primary, 1}}, {0, y, 300, 40});
  }

  QAbstractButton* button(ViewId id) { return as<QAbstractButton>(id); }
  QList<QAbstractButton*> segments(ViewId id) {
    return widget(id)->findChildren<QAbstractButton*>();
  }
  std::optional<int> selected(ViewId id) {
    for (int i = 0; i < segments(id).size(); ++i) {
      if (segments(id)[i]->isChecked()) return i;
    }
    return std::nullopt;
  }
};

TEST_F(Controls, AClickOnAButtonsLabelPressesItThroughWhatLiesInFront) {
  insertCard();
  clickAt({212, 20});
  EXPECT_THAT(actions.take(), ElementsAre("press 2"));
  clickAt({100, 20});
  EXPECT_THAT(actions.take(), IsEmpty());
}

TEST_F(Controls, OnlyTheLeftButtonPresses) {
  insertCard();
  QTest::mouseClick(widget(2), Qt::RightButton);
  QTest::mouseClick(widget(2), Qt::MiddleButton);
  EXPECT_THAT(actions.take(), IsEmpty());
}

TEST_F(Controls, AReleaseElsewhereDoesNotPress) {
  insertCard();
  QTest::mousePress(widget(2), Qt::LeftButton);
  EXPECT_NE(widget(2)->graphicsEffect(), nullptr);
  QTest::mouseMove(widget(2), QPoint(-50, 0));
  QTest::mouseRelease(widget(2), Qt::LeftButton, {}, QPoint(-50, 0));
  EXPECT_THAT(actions.take(), IsEmpty());
  EXPECT_EQ(widget(2)->graphicsEffect(), nullptr);
}

TEST_F(Controls, AButtonIsDimmedWhileItIsPressed) {
  insertCard();
  QTest::mousePress(widget(2), Qt::LeftButton);
  EXPECT_NE(widget(2)->graphicsEffect(), nullptr);
  QTest::mouseRelease(widget(2), Qt::LeftButton);
  EXPECT_EQ(widget(2)->graphicsEffect(), nullptr);
}

TEST_F(Controls, APressedButtonStaysPressedWhileThePanelChanges) {
  insertCard();
  QTest::mousePress(widget(2), Qt::LeftButton);
  update(4, {NativeSymbol{"lock.fill", Font::system(11), Color::orange}});
  update(2, {NativeButton{}, "Help"});
  remove(3);
  apply({SetViewFrame{2, {190, 8, 24, 24}}, MoveView{2, 0}});
  EXPECT_TRUE(button(2)->isDown());
  QTest::mouseRelease(widget(2), Qt::LeftButton);
  EXPECT_THAT(actions.take(), ElementsAre("press 2"));
}

TEST_F(Controls, ASwitchTellsWhatItHasBecome) {
  insert(1, NativeSwitch{false, Color::cyan}, {0, 0, 38, 22});
  clickAt({19, 11});
  EXPECT_THAT(actions.take(), ElementsAre("toggle 1 on"));
  QTest::keyClick(widget(1), Qt::Key_Space);
  EXPECT_THAT(actions.take(), ElementsAre("toggle 1 off"));
}

TEST_F(Controls, ACheckboxIsToggledByItsTitleToo) {
  insert(1, NativeCheckbox{false, "Launch & watch", {}, {}}, {0, 0, 120, 16});
  clickAt({100, 8});
  EXPECT_THAT(actions.take(), ElementsAre("toggle 1 on"));
  EXPECT_TRUE(button(1)->shortcut().isEmpty());
}

TEST_F(Controls, TheProgramsOwnChangesAreNotToldBack) {
  insert(1, NativeSwitch{false, Color::cyan}, {0, 0, 38, 22});
  insert(2, NativeCheckbox{false, "Launch", {}, {}}, {0, 30, 120, 16});
  insert(3, NativeSegments{{"1", "5", "15"}, 0}, {0, 60, 150, 24});
  update(1, {NativeSwitch{true, Color::cyan}});
  update(2, {NativeCheckbox{true, "Launch", {}, {}}});
  update(3, {NativeSegments{{"1", "5", "15"}, 2}});
  update(3, {NativeSegments{{"1", "5", "15"}, {}}});
  settle();
  EXPECT_TRUE(button(1)->isChecked());
  EXPECT_TRUE(button(2)->isChecked());
  EXPECT_EQ(selected(3), std::nullopt);
  EXPECT_THAT(actions.take(), IsEmpty());
}

TEST_F(Controls, AControlTakesTheStateThatItIsToldAgain) {
  insert(1, NativeSwitch{false, Color::cyan}, {0, 0, 38, 22});
  insert(2, NativeSegments{{"1", "5"}, 0}, {0, 60, 100, 24});
  clickAt({19, 11});
  QTest::mouseClick(segments(2)[1], Qt::LeftButton);
  EXPECT_THAT(actions.take(), ElementsAre("toggle 1 on", "select 2 1"));
  update(1, {NativeSwitch{false, Color::cyan}});
  update(2, {NativeSegments{{"1", "5"}, 0}});
  EXPECT_FALSE(button(1)->isChecked());
  EXPECT_EQ(selected(2), 0);
}

TEST_F(Controls, ASwitchThatIsOnHasItsTint) {
  insert(1, NativeSwitch{true, Color::cyan}, {0, 0, 38, 22});
  const auto at = [&](int x) { return QColor(widget(1)->grab().toImage().pixel(x, 11)); };
  settle();
  QTRY_COMPARE(at(8), colorNow(Color::cyan));
  EXPECT_EQ(at(27), QColor(Qt::white));
  update(1, {NativeSwitch{false, Color::cyan}});
  QTRY_COMPARE(at(11), QColor(Qt::white));
  QTRY_VERIFY(at(30).hslSaturation() < 20);
}

TEST_F(Controls, SegmentsShareTheWidth) {
  insert(1, NativeSegments{{"1", "5", "15", "30", "60"}, 1}, {0, 0, 255, 24});
  ASSERT_EQ(segments(1).size(), 5);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(segments(1)[i]->geometry(), QRect(51 * i, 0, 51, 24));
  EXPECT_EQ(selected(1), 1);
}

TEST_F(Controls, AClickSelectsASegmentOnce) {
  insert(1, NativeSegments{{"1", "5", "15"}, {}}, {0, 0, 150, 24});
  EXPECT_EQ(selected(1), std::nullopt);
  clickAt({75, 12});
  clickAt({75, 12});
  EXPECT_THAT(actions.take(), ElementsAre("select 1 1"));
  EXPECT_EQ(selected(1), 1);
}

TEST_F(Controls, TheSelectedSegmentIsCyan) {
  insert(1, NativeSegments{{"1", "5", "15"}, 1}, {0, 0, 150, 24});
  const auto at = [&](int x) { return QColor(widget(1)->grab().toImage().pixel(x, 6)); };
  EXPECT_EQ(at(60), colorNow(Color::cyan));
  EXPECT_NE(at(10), colorNow(Color::cyan));
}

TEST_F(Controls, SegmentsMayBecomeFewerAndMore) {
  insert(1, NativeSegments{{"1", "5", "15"}, 2}, {0, 0, 150, 24});
  update(1, {NativeSegments{{"1"}, {}}});
  settle();
  EXPECT_EQ(segments(1).size(), 1);
  update(1, {NativeSegments{{}, {}}});
  settle();
  EXPECT_EQ(segments(1).size(), 0);
  update(1, {NativeSegments{{"1", "5"}, 1}});
  EXPECT_EQ(selected(1), 1);
}

TEST_F(Controls, APressMayTakeAwayItsOwnButton) {
  insertCard();
  const QPointer<QWidget> pressed = widget(2);
  actions.onAction = [&] {
    if (widget(2)) remove(2);
    // As while an alert is open that the press has brought up.
    settle();
    EXPECT_FALSE(pressed.isNull());
  };
  clickAt({212, 20});
  EXPECT_THAT(actions.take(), ElementsAre("press 2"));
  settle();
  EXPECT_TRUE(pressed.isNull());
}

TEST_F(Controls, APressMayTakeAwayThePanel) {
  insertCard();
  actions.onAction = [&] { mount.reset(); };
  QTest::mouseClick(widget(2), Qt::LeftButton);
  EXPECT_EQ(mount, nullptr);
  settle();
}

TEST_F(Controls, AToggleOrASelectionMayTakeAwayItsControl) {
  insert(1, NativeSwitch{false, Color::cyan}, {0, 0, 38, 22});
  insert(2, NativeCheckbox{false, "Launch", {}, {}}, {0, 30, 120, 16});
  insert(3, NativeSegments{{"1", "5", "15"}, 0}, {0, 60, 150, 24});
  for (const ViewId id : {ViewId{1}, ViewId{2}, ViewId{3}}) {
    actions.onAction = [&] { remove(id); };
    auto* const target = id == 3 ? segments(3)[1] : widget(id);
    QTest::mouseClick(target, Qt::LeftButton);
    EXPECT_EQ(actions.take().size(), 1U) << id;
    settle();
    EXPECT_EQ(widget(id), nullptr) << id;
  }
}

TEST_F(Controls, APanelThatIsHiddenLetsGoOfAPressedButton) {
  insertCard();
  QTest::mousePress(widget(2), Qt::LeftButton);
  mount->widget()->hide();
  mount->widget()->show();
  EXPECT_FALSE(button(2)->isDown());
  EXPECT_EQ(widget(2)->graphicsEffect(), nullptr);
  EXPECT_THAT(actions.take(), IsEmpty());
}

}  // namespace
}  // namespace quillmont
