// The keyboard's way through the panel.
#include "platform/macos/views/MountTest.h"

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::MountTest;

class Keyboard : public MountTest {
 protected:
  /// Which views the Tab key comes by from `from` on, until it comes by one again.
  std::vector<ViewId> round(ViewId from, const std::vector<ViewId>& all) {
    std::vector<ViewId> result{from};
    for (NSView* next = [view(from) nextKeyView]; next != view(from) && result.size() < 20;
         next = [next nextKeyView]) {
      ViewId found = 0;
      for (const auto one : all) {
        if (view(one) == next) found = one;
      }
      result.push_back(found);
    }
    return result;
  }

  void insertButtons() {
    for (ViewId one = 1; one <= 3; ++one) {
      insert(one, NativeButton{}, {0, 30.0 * static_cast<double>(one), 24, 24});
    }
  }
};

TEST_F(Keyboard, TabGoesThroughTheViewsInTheirOrder) {
  insert(1, NativeSwitch{false, Color::cyan}, {280, 0, 38, 22});
  insert(5, NativeButton{}, {280, 380, 24, 24});
  apply({InsertView{2, kRootView, 1, {NativeGroup{}}, {0, 30, 320, 100}},
         insertion(3, NativeButton{}, {0, 0, 24, 24}, 2),
         insertion(4, NativeSegments{{"1", "5"}, 1}, {0, 60, 100, 24}, 2)});
  EXPECT_THAT(round(1, {1, 3, 4, 5}), ElementsAre(1, 3, 4, 5));
}

TEST_F(Keyboard, TabFollowsAMoveAndARemoval) {
  insertButtons();
  EXPECT_THAT(round(1, {1, 2, 3}), ElementsAre(1, 2, 3));
  apply({MoveView{3, 0}});
  EXPECT_THAT(round(3, {1, 2, 3}), ElementsAre(3, 1, 2));
  remove(1);
  EXPECT_THAT(round(3, {1, 2, 3}), ElementsAre(3, 2));
}

TEST_F(Keyboard, TheFocusStaysWhereItIsWhileThePanelChanges) {
  insertButtons();
  ASSERT_TRUE([window makeFirstResponder:view(2)]);
  update(2, {NativeButton{}, "Help"});
  apply({MoveView{2, 0}, SetViewFrame{2, {5, 5, 24, 24}}, RemoveView{1}});
  insert(4, NativeButton{}, {0, 200, 24, 24});
  EXPECT_EQ([window firstResponder], view(2));
}

TEST_F(Keyboard, TheFocusGoesOnWhenItsViewGoes) {
  insertButtons();
  ASSERT_TRUE([window makeFirstResponder:view(2)]);
  remove(2);
  EXPECT_EQ([window firstResponder], view(3));
  remove(3);
  EXPECT_EQ([window firstResponder], view(1));
  remove(1);
  EXPECT_EQ([window firstResponder], window.get());
}

TEST_F(Keyboard, SpaceAndReturnPress) {
  insert(1, NativeButton{}, {0, 0, 24, 24});
  insert(2, NativeSwitch{false, Color::cyan}, {0, 30, 38, 22});
  ASSERT_TRUE([window makeFirstResponder:view(1)]);
  type(@" ");
  type(@"\r");
  type(@"x");
  EXPECT_THAT(actions.take(), ElementsAre("press 1", "press 1"));
  ASSERT_TRUE([window makeFirstResponder:view(2)]);
  type(@" ");
  EXPECT_THAT(actions.take(), ElementsAre("toggle 2 on"));
}

TEST_F(Keyboard, EscapeIsLeftToTheWindow) {
  insert(1, NativeButton{}, {0, 0, 24, 24});
  insert(2, NativeSwitch{false, Color::cyan}, {0, 30, 38, 22});
  for (const ViewId one : {ViewId{1}, ViewId{2}}) {
    ASSERT_TRUE([window makeFirstResponder:view(one)]);
    type(@"\033", 53);
    EXPECT_THAT(actions.take(), IsEmpty());
  }
}

TEST_F(Keyboard, WhatTheKeyboardComesToIsScrolledIntoView) {
  insert(1, NativeScroll{{300, 900}}, {0, 0, 320, 200});
  insert(2, NativeButton{}, {10, 10, 24, 24}, 1);
  insert(3, NativeButton{}, {10, 700, 24, 24}, 1);
  ASSERT_TRUE([window makeFirstResponder:view(3)]);
  EXPECT_GE(looks(3).origin.y, 0);
  EXPECT_LE(NSMaxY(looks(3)), 200);
  ASSERT_TRUE([window makeFirstResponder:view(2)]);
  EXPECT_GE(looks(2).origin.y, 0);
}

}  // namespace
}  // namespace quillmont
