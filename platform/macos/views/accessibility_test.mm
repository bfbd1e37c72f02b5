// What readers of the screen are told.
#include "platform/macos/strings.h"
#include "platform/macos/views/MountTest.h"

namespace quillmont {
namespace {

using testing::kEjectSymbol;
using testing::kLabel;
using testing::kSquare;
using testing::MountTest;

class ScreenReader : public MountTest {
 protected:
  void insertWith(ViewId name, NativeContent content, std::string help, std::string label) {
    apply({InsertView{name,
                      kRootView,
                      1000,
                      {std::move(content), std::move(help), std::move(label)},
                      {0, 0, 200, 40}}});
  }

  std::string label(ViewId name) { return utf8String([view(name) accessibilityLabel]); }
  std::string help(ViewId name) { return utf8String([view(name) accessibilityHelp]); }
};

TEST_F(ScreenReader, ControlsAndTextsAreRead) {
  insertWith(1, NativeSwitch{true, Color::cyan}, "", "Watch");
  insertWith(2, NativeCheckbox{false, "Launch", {}, {}}, "", "");
  insertWith(3, NativeButton{}, "", "Eject");
  insertWith(4, kLabel, "", "");
  insertWith(5, NativeSegments{{"1分", "5分"}, 1}, "", "Timeout");
  for (ViewId one = 1; one <= 5; ++one) EXPECT_TRUE([view(one) isAccessibilityElement]) << one;
  EXPECT_EQ(label(1), "Watch");
  EXPECT_EQ(label(3), "Eject");
  EXPECT_EQ(label(5), "Timeout");
}

TEST_F(ScreenReader, ASwitchIsACheckboxOfItsOwnKind) {
  insertWith(1, NativeSwitch{true, Color::cyan}, "", "Watch");
  EXPECT_TRUE([[view(1) accessibilitySubrole] isEqualToString:NSAccessibilitySwitchSubrole]);
  EXPECT_TRUE([[view(1) accessibilityRole] isEqualToString:NSAccessibilityCheckBoxRole]);
  EXPECT_EQ([static_cast<NSNumber*>([view(1) accessibilityValue]) integerValue], 1);
  update(1, {NativeSwitch{false, Color::cyan}});
  EXPECT_EQ([static_cast<NSNumber*>([view(1) accessibilityValue]) integerValue], 0);
}

TEST_F(ScreenReader, FiguresAreNotRead) {
  insertWith(1, kEjectSymbol, "", "");
  insertWith(2, kSquare, "", "");
  EXPECT_FALSE([view(1) isAccessibilityElement]);
  EXPECT_FALSE([view(2) isAccessibilityElement]);
  insertWith(3, kEjectSymbol, "", "Eject");
  EXPECT_TRUE([view(3) isAccessibilityElement]);
}

TEST_F(ScreenReader, ANameIsTheLabelElseTheHelp) {
  insertWith(1, NativeCheckbox{false, "Launch", {}, {}}, "Help", "Label");
  EXPECT_EQ(label(1), "Label");
  EXPECT_EQ(help(1), "Help");
  insertWith(2, NativeCheckbox{false, "Launch", {}, {}}, "Help", "");
  EXPECT_EQ(label(2), "") << "the title is its name already";
  EXPECT_EQ(help(2), "Help");
  insertWith(3, NativeSwitch{false, Color::cyan}, "Help", "");
  EXPECT_EQ(label(3), "Help");
  EXPECT_EQ(help(3), "");
}

TEST_F(ScreenReader, AButtonIsReadInPlaceOfItsLabel) {
  insertWith(1, NativeButton{}, "", "退出应用");
  insert(2, NativeGroup{}, {0, 0, 100, 20}, 1);
  insert(3, kEjectSymbol, {0, 0, 14, 14}, 2);
  insert(4, NativeLabel{"退出应用", {}, {}}, {20, 0, 60, 16}, 2);
  EXPECT_EQ(label(1), "退出应用");
  EXPECT_FALSE([view(4) isAccessibilityElement]);
}

TEST_F(ScreenReader, AShortenedTextIsToldWhole) {
  auto content = kLabel;
  content.text = std::string(300, 'n');
  content.lineLimit = 1;
  insert(1, content, {0, 0, 80, 16});
  EXPECT_EQ(utf8String([as<NSTextField>(1) stringValue]), content.text);
}

}  // namespace
}  // namespace quillmont
