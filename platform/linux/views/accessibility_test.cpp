// What readers of the screen are told.
#include <QAccessible>

#include "platform/linux/views/MountTest.h"

namespace quillmont {
namespace {

using testing::kEjectSymbol;
using testing::kLabel;
using testing::kSquare;
using testing::MountTest;

class ScreenReader : public MountTest {
 protected:
  void insertWith(ViewId id, NativeContent content, std::string help, std::string label) {
    apply({InsertView{id,
                      kRootView,
                      1000,
                      {std::move(content), std::move(help), std::move(label)},
                      {0, 0, 200, 40}}});
  }

  QAccessibleInterface* seen(ViewId id) {
    return QAccessible::queryAccessibleInterface(widget(id));
  }
  QString name(ViewId id) { return seen(id)->text(QAccessible::Name); }
};

TEST_F(ScreenReader, EveryControlHasItsRole) {
  insertWith(1, NativeSwitch{true, Color::cyan}, "", "Watch");
  insertWith(2, NativeCheckbox{false, "Launch", {}, {}}, "", "");
  insertWith(3, NativeButton{}, "", "Eject");
  insertWith(4, kLabel, "", "");
  EXPECT_EQ(seen(1)->role(), QAccessible::CheckBox);
  EXPECT_TRUE(seen(1)->state().checked);
  EXPECT_EQ(seen(2)->role(), QAccessible::CheckBox);
  EXPECT_FALSE(seen(2)->state().checked);
  EXPECT_EQ(seen(3)->role(), QAccessible::Button);
  EXPECT_EQ(seen(4)->role(), QAccessible::StaticText);
  for (ViewId id = 1; id <= 3; ++id) EXPECT_TRUE(seen(id)->state().focusable) << id;
}

TEST_F(ScreenReader, SegmentsAreRadioButtonsWithTheirLabels) {
  insertWith(1, NativeSegments{{"1分", "5分"}, 1}, "", "Timeout");
  EXPECT_EQ(name(1), "Timeout");
  ASSERT_EQ(seen(1)->childCount(), 2);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(seen(1)->child(i)->role(), QAccessible::RadioButton);
    EXPECT_TRUE(seen(1)->child(i)->state().focusable);
    EXPECT_EQ(seen(1)->child(i)->state().checked, i == 1);
  }
  EXPECT_EQ(seen(1)->child(0)->text(QAccessible::Name), "1分");
}

TEST_F(ScreenReader, ANameIsTheLabelElseTheTextElseTheHelp) {
  insertWith(1, NativeCheckbox{false, "Launch & watch", {}, {}}, "Help", "Label");
  EXPECT_EQ(name(1), "Label");
  EXPECT_EQ(seen(1)->text(QAccessible::Description), "Help");
  insertWith(2, NativeCheckbox{false, "Launch & watch", {}, {}}, "Help", "");
  EXPECT_EQ(name(2), "Launch & watch");
  insertWith(3, NativeSwitch{false, Color::cyan}, "Help", "");
  EXPECT_EQ(name(3), "Help");
}

TEST_F(ScreenReader, AShortenedTextIsToldWhole) {
  auto label = kLabel;
  label.text = std::string(300, 'n');
  label.lineLimit = 1;
  insert(1, label, {0, 0, 80, 16});
  EXPECT_EQ(name(1), QString(300, 'n'));
}

TEST_F(ScreenReader, PressingThroughTheReaderIsPressing) {
  insertWith(1, NativeButton{}, "", "Eject");
  seen(1)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  bool pressed = false;
  actions.onAction = [&] { pressed = true; };
  QTRY_VERIFY(pressed);
  EXPECT_THAT(actions.take(), ::testing::ElementsAre("press 1"));
}

}  // namespace
}  // namespace quillmont
