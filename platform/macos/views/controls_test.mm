// What the user does to controls, and what the program does to them.
#include <cmath>

#include "platform/macos/views/MountTest.h"
#include "platform/macos/views/PressArea.h"
#include "platform/macos/views/SegmentsView.h"
#include "platform/macos/views/SwitchView.h"

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::kEjectSymbol;
using testing::kSquare;
using testing::MountTest;

const NativeSwitch kOff{false, Color::cyan}, kOn{true, Color::cyan};
const NativeCheckbox kUnchecked{false, "Launch", {}, {}}, kChecked{true, "Launch", {}, {}};

class Controls : public MountTest {
 protected:
  void insertCard() {
    insert(1, kSquare, {0, 0, 300, 40});
    insert(2, NativeButton{}, {200, 8, 24, 24});
    insert(3, kSquare, {0, 0, 24, 24}, 2);
    insert(4, kEjectSymbol, {4, 4, 14, 14}, 2);
    insert(5, NativeShape{.stroke = Stroke{Color::primary, 1}}, {0, 0, 300, 40});
  }

  void insertControls() {
    insert(1, kOff, {0, 0, 38, 22});
    insert(2, kUnchecked, {0, 30, 120, 16});
    insert(3, NativeSegments{{"1", "5", "15"}, 0}, {0, 60, 150, 24});
  }

  bool isOn(ViewId control) { return [as<NSButton>(control) state] == NSControlStateValueOn; }
  NSInteger selected(ViewId control) { return [as<NSSegmentedControl>(control) selectedSegment]; }

  /// As if the user had clicked on it, or asked a reader of the screen to.
  void choose(ViewId control, NSInteger segment) {
    @autoreleasepool {
      auto* const segments = as<NSSegmentedControl>(control);
      [segments setSelectedSegment:segment];
      [segments sendAction:[segments action] to:[segments target]];
    }
  }
};

TEST_F(Controls, AClickOnAButtonsLabelPressesItThroughWhatLiesInFront) {
  insertCard();
  click({212, 20});
  EXPECT_THAT(actions.take(), ElementsAre("press 2"));
  click({100, 20});
  EXPECT_THAT(actions.take(), IsEmpty());
}

TEST_F(Controls, AReleaseElsewhereDoesNotPress) {
  insertCard();
  press({212, 20});
  EXPECT_TRUE([as<QMPressArea>(2) isPressing]);
  drag({150, 20});
  EXPECT_FALSE([as<QMPressArea>(2) isPressing]);
  release({150, 20});
  EXPECT_THAT(actions.take(), IsEmpty());
}

TEST_F(Controls, APointerThatComesBackPressesAfterAll) {
  insertCard();
  press({212, 20});
  drag({150, 20});
  drag({210, 18});
  EXPECT_TRUE([as<QMPressArea>(2) isPressing]);
  release({210, 18});
  EXPECT_THAT(actions.take(), ElementsAre("press 2"));
}

TEST_F(Controls, AButtonIsDimmedWhileItIsPressed) {
  insertCard();
  update(2, {NativeButton{}, "", "", false, 0.5});
  press({212, 20});
  EXPECT_NEAR([view(2) alphaValue], 0.35, 1e-6);
  release({212, 20});
  EXPECT_NEAR([view(2) alphaValue], 0.5, 1e-6);
}

TEST_F(Controls, APressedButtonStaysPressedWhileThePanelChanges) {
  insertCard();
  press({212, 20});
  update(4, {NativeSymbol{"lock.fill", Font::system(11), Color::orange}});
  update(2, {NativeButton{}, "Help"});
  remove(3);
  apply({SetViewFrame{2, {190, 8, 24, 24}}, MoveView{2, 0}});
  EXPECT_TRUE([as<QMPressArea>(2) isPressing]);
  release({200, 20});
  EXPECT_THAT(actions.take(), ElementsAre("press 2"));
}

TEST_F(Controls, AButtonThatGoesWhileItIsPressedPressesNothing) {
  insertCard();
  press({212, 20});
  remove(2);
  release({212, 20});
  EXPECT_THAT(actions.take(), IsEmpty());
}

TEST_F(Controls, APanelThatLeavesTheScreenLetsGoOfAPressedButton) {
  insertCard();
  press({212, 20});
  mount->setVisible(false);
  EXPECT_FALSE([as<QMPressArea>(2) isPressing]);
  EXPECT_EQ([view(2) alphaValue], 1);
  mount->setVisible(true);
  release({212, 20});
  EXPECT_THAT(actions.take(), IsEmpty());
}

TEST_F(Controls, ASwitchTellsWhatItHasBecome) {
  insert(1, kOff, {0, 0, 38, 22});
  click({19, 11});
  EXPECT_THAT(actions.take(), ElementsAre("toggle 1 on"));
  click({19, 11});
  EXPECT_THAT(actions.take(), ElementsAre("toggle 1 off"));
}

TEST_F(Controls, ACheckboxTellsWhatItHasBecome) {
  insert(1, kUnchecked, {0, 0, 120, 16});
  [as<NSButton>(1) performClick:nil];
  EXPECT_THAT(actions.take(), ElementsAre("toggle 1 on"));
  [as<NSButton>(1) performClick:nil];
  EXPECT_THAT(actions.take(), ElementsAre("toggle 1 off"));
}

TEST_F(Controls, TheProgramsOwnChangesAreNotToldBack) {
  insertControls();
  update(1, {kOn});
  update(2, {kChecked});
  update(3, {NativeSegments{{"1", "5", "15"}, 2}});
  EXPECT_EQ(selected(3), 2);
  update(3, {NativeSegments{{"1", "5", "15"}, {}}});
  turn();
  EXPECT_TRUE(isOn(1));
  EXPECT_TRUE(isOn(2));
  EXPECT_EQ(selected(3), -1);
  EXPECT_THAT(actions.take(), IsEmpty());
}

TEST_F(Controls, AControlTakesTheStateThatItIsToldAgain) {
  insertControls();
  click({19, 11});
  choose(3, 1);
  EXPECT_THAT(actions.take(), ElementsAre("toggle 1 on", "select 3 1"));
  update(1, {kOff});
  update(3, {NativeSegments{{"1", "5", "15"}, 0}});
  EXPECT_FALSE(isOn(1));
  EXPECT_EQ(selected(3), 0);
  choose(3, 1);
  EXPECT_THAT(actions.take(), ElementsAre("select 3 1"));
}

TEST_F(Controls, ASegmentIsSelectedOnce) {
  insert(1, NativeSegments{{"1", "5", "15"}, {}}, {0, 0, 150, 24});
  EXPECT_EQ(selected(1), -1);
  choose(1, 1);
  choose(1, 1);
  EXPECT_THAT(actions.take(), ElementsAre("select 1 1"));
}

TEST_F(Controls, SegmentsMayBecomeFewerAndMore) {
  insert(1, NativeSegments{{"1", "5", "15"}, 2}, {0, 0, 150, 24});
  update(1, {NativeSegments{{"1"}, {}}});
  EXPECT_EQ([as<NSSegmentedControl>(1) segmentCount], 1);
  update(1, {NativeSegments{{}, {}}});
  EXPECT_EQ([as<NSSegmentedControl>(1) segmentCount], 0);
  update(1, {NativeSegments{{"1", "5"}, 1}});
  EXPECT_EQ(selected(1), 1);
  EXPECT_TRUE([[as<NSSegmentedControl>(1) labelForSegment:1] isEqualToString:@"5"]);
}

TEST_F(Controls, APressMayTakeAwayItsOwnButton) {
  insertCard();
  actions.onAction = [&] {
    if (view(2)) remove(2);
    // As while an alert is open that the press has brought up.
    turn();
  };
  click({212, 20});
  EXPECT_THAT(actions.take(), ElementsAre("press 2"));
  EXPECT_EQ(view(2), nil);
}

TEST_F(Controls, APressMayTakeAwayThePanel) {
  insertCard();
  actions.onAction = [&] { mount.reset(); };
  press({212, 20});
  [window sendEvent:[NSEvent mouseEventWithType:NSEventTypeLeftMouseUp
                                       location:NSMakePoint(212, 380)
                                  modifierFlags:0
                                      timestamp:0
                                   windowNumber:[window windowNumber]
                                        context:nil
                                    eventNumber:0
                                     clickCount:1
                                       pressure:1]];
  EXPECT_EQ(mount, nullptr);
  EXPECT_THAT(actions.take(), ElementsAre("press 2"));
}

TEST_F(Controls, AToggleOrASelectionMayTakeAwayItsControl) {
  insertControls();
  for (const ViewId control : {ViewId{1}, ViewId{2}, ViewId{3}}) {
    actions.onAction = [&] {
      remove(control);
      turn();
    };
    if (control == 3) {
      choose(control, 1);
    } else {
      [as<NSButton>(control) performClick:nil];
    }
    EXPECT_EQ(actions.take().size(), 1U) << control;
    EXPECT_EQ(view(control), nil) << control;
  }
}

TEST_F(Controls, ASwitchThatIsOnHasItsTint) {
  insert(1, kOn, {0, 0, 38, 22});
  EXPECT_EQ(as<QMSwitchArea>(1)->tint, Color::cyan);
  const auto at = [&](NSInteger x) { return pixel(view(1), x, 11); };
  EXPECT_TRUE(turnUntil([&] { return [at(6) redComponent] < 0.4; }));
  EXPECT_GT([at(6) blueComponent], 0.8);
  EXPECT_GT([at(27) redComponent], 0.95);
  update(1, {kOff});
  const auto isGrey = [&](NSInteger x) {
    return std::abs([at(x) redComponent] - [at(x) blueComponent]) < 0.05;
  };
  EXPECT_TRUE(turnUntil([&] { return isGrey(6) && isGrey(33); }));
}

}  // namespace
}  // namespace quillmont
