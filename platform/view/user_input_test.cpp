// What the user does to a panel, and what it does while the panel changes under the hand.

#include <gmock/gmock.h>

#include "tests/support/ViewTest.h"

namespace quillmont {
namespace {

using testing::Counter;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class UserInput : public testing::ViewTest {
 protected:
  std::function<void(bool)> noteHover(const std::string& name) {
    return [this, name](bool isInside) { noted += name + (isInside ? "+ " : "- "); };
  }
  Binding<bool> isShown{[this] { return shown; },
                        [this](bool value) {
                          noted += value ? "show " : "dismiss ";
                          shown = value;
                          change();
                        }};
  View menuButton() {
    return Button([] {}, Text("menu")).popover(isShown, RectEdge::maxY, [] { return Text("in"); });
  }
  bool isPopoverThere() { return !mount.findAll("popover").empty(); }

  std::string noted;
  bool shown = false;
};

TEST_F(UserInput, ReachesTheActionOfTheLastRedraw) {
  int body = 0, pressed = 0;
  showAsking([&] {
    ++body;
    return Button([&, number = body] { pressed = number; }, Text("a"));
  });
  redraw();
  press("button");
  EXPECT_EQ(pressed, 2);
}

TEST_F(UserInput, ToViewsThatHaveGoneIsPassedOver) {
  bool isThere = true;
  showAsking([&]() -> View {
    if (!isThere) return VerbatimText("gone");
    return Button([&] { noted += "pressed "; }, Text("a")).onHover(noteHover("a"));
  });
  const auto button = mount.find("button");
  isThere = false;
  redraw();
  panel->press(button);
  panel->toggle(button, true);
  panel->select(button, 0);
  panel->hover(button, true);
  panel->dismiss(button);
  panel->press(4711);
  EXPECT_EQ(noted, "");
  EXPECT_EQ(loop.pendingTasks(), 0u);
}

TEST_F(UserInput, ThatAViewDoesNotTakeIsPassedOver) {
  show(Button([this] { noted += "pressed "; }, Text("a")));
  const auto button = mount.find("button");
  panel->toggle(button, true);
  panel->select(button, 0);
  panel->hover(button, true);
  panel->dismiss(button);
  EXPECT_EQ(noted, "");
  EXPECT_EQ(loop.pendingTasks(), 0u);
}

TEST_F(UserInput, ThatABindingRefusesIsTakenBack) {
  const Binding<bool> refusing([] { return true; }, [this](bool) { noted += "asked "; });
  show(Toggle("", refusing));
  panel->toggle(mount.find("switch on"), false);
  EXPECT_EQ(noted, "asked ");
  loop.runTasks();
  EXPECT_EQ(mount.story(), "update switch on cyan\n");
  redraw();
  panel->toggle(mount.find("switch on"), false);
  loop.runTasks();
  EXPECT_EQ(mount.story(), "update switch on cyan\n") << "every time";
}

TEST_F(UserInput, ToSegmentsThatABindingRefusesIsTakenBack) {
  const Binding<double> refusing([] { return 1.0; }, [](double) {});
  show(SegmentedPicker("", refusing, {{"a", 1}, {"b", 2}}));
  panel->select(mount.find("segments"), 1);
  loop.runTasks();
  EXPECT_EQ(mount.story(), "update segments [a] b\n");
}

TEST_F(UserInput, IsToldOnceOnly) {
  const Binding<bool> refusing([] { return true; }, [](bool) {});
  showAsking([&] { return Toggle("", refusing); });
  panel->toggle(mount.find("switch on"), false);
  loop.runTasks();
  redraw();
  EXPECT_EQ(mount.story(), "");
}

TEST_F(UserInput, MayChangeThePanelWhileItIsHeld) {
  bool isThere = true;
  showAsking([&]() -> View {
    if (!isThere) return VerbatimText("gone");
    return Button(
        [this, &isThere, big = std::string(100, 'x')] {
          isThere = false;
          redraw();
          noted = big;
        },
        Text("a"));
  });
  press("button");
  EXPECT_EQ(noted, std::string(100, 'x')) << "the action outlives its view";
  EXPECT_THAT(mount.picture(), HasSubstr("gone"));
}

TEST_F(UserInput, MayEndThePanel) {
  show(Button(
      [this, big = std::string(100, 'x')] {
        panel.reset();
        noted = big;
      },
      Text("a")));
  press("button");
  EXPECT_FALSE(panel);
  EXPECT_EQ(noted, std::string(100, 'x'));
}

TEST_F(UserInput, ToASwitchMayEndThePanel) {
  const Binding<bool> ending([] { return true; }, [this](bool) { panel.reset(); });
  show(Toggle("", ending));
  panel->toggle(mount.find("switch"), false);
  EXPECT_FALSE(panel);
  loop.runTasks();
}

TEST_F(UserInput, HoverComesAndGoes) {
  show(Text("a").onHover(noteHover("a")));
  hover("hover", true);
  hover("hover", false);
  EXPECT_EQ(noted, "a+ a- ");
}

TEST_F(UserInput, HoverLeavesAViewThatGoes) {
  bool isThere = true;
  showAsking([&]() -> View {
    return isThere ? HStack({Text("a").onHover(noteHover("a")), Text("b").onHover(noteHover("b"))})
                   : HStack({Text("c")});
  });
  panel->hover(mount.findAll("hover").at(0), true);
  redraw();
  EXPECT_EQ(noted, "a+ ") << "as long as it is there";
  isThere = false;
  redraw();
  EXPECT_EQ(noted, "a+ a- ") << "and nothing is left that was not entered";
  redraw();
  EXPECT_EQ(noted, "a+ a- ");
}

TEST_F(UserInput, HoverLeavesAViewThatNoLongerAsksForIt) {
  bool isAsking = true;
  showAsking([&] {
    const auto label = VerbatimText("a");
    return Button([] {}, isAsking ? label.onHover(noteHover("a")) : label);
  });
  hover("button", true);
  isAsking = false;
  redraw();
  EXPECT_EQ(noted, "a+ a- ");
  panel.reset();
}

TEST_F(UserInput, HoverThatWasLeftIsNotLeftAgain) {
  bool isThere = true;
  showAsking([&] { return isThere ? Text("a").onHover(noteHover("a")) : Text("b"); });
  hover("hover", true);
  hover("hover", false);
  isThere = false;
  redraw();
  EXPECT_EQ(noted, "a+ a- ");
}

TEST_F(UserInput, HoverLeavesNativeViewsThatAreUnmounted) {
  show(Text("a").onHover(noteHover("a")));
  hover("hover", true);
  panel->unmount();
  EXPECT_EQ(noted, "a+ a- ");
  panel->hover(mount.find("hover"), true);
  EXPECT_EQ(noted, "a+ a- ") << "they are no longer the panel's";
}

TEST_F(UserInput, HoverLeavesNativeViewsWhosePlaceOthersTake) {
  show(Text("a").onHover(noteHover("a")));
  hover("hover", true);
  testing::FakeMount other;
  panel->mount(other, metrics);
  EXPECT_EQ(noted, "a+ a- ");
}

TEST_F(UserInput, HoverThatIsLeftMayEndThePanel) {
  bool isThere = true;
  showAsking([&] {
    const auto ending = Text("a").onHover([&](bool isInside) {
      noted += "a";
      if (!isInside) panel.reset();
    });
    return isThere ? HStack({ending, ending}) : HStack({Text("b")});
  });
  for (const auto view : mount.findAll("hover")) panel->hover(view, true);
  isThere = false;
  panel->metricsDidChange();
  EXPECT_FALSE(panel);
  EXPECT_EQ(noted, "aaaa");
}

TEST_F(UserInput, PopoverComesAndGoesWithItsBinding) {
  showAsking([this] { return menuButton(); });
  EXPECT_FALSE(isPopoverThere());
  shown = true;
  redraw();
  EXPECT_TRUE(isPopoverThere());
  shown = false;
  redraw();
  EXPECT_FALSE(isPopoverThere());
}

TEST_F(UserInput, PopoverStaysTheSameFromOneRedrawToTheNext) {
  shown = true;
  showAsking([this] { return menuButton(); });
  const auto popover = mount.find("popover");
  redraw();
  EXPECT_EQ(mount.find("popover"), popover);
  EXPECT_EQ(mount.story(), "");
}

TEST_F(UserInput, PopoverRemembersWhileItIsShown) {
  shown = true;
  showAsking([this] {
    return Text("a").popover(isShown, RectEdge::maxY, []() -> View { return Counter{"c"}; });
  });
  press("button");
  loop.runTasks();
  EXPECT_THAT(mount.picture(), HasSubstr("c=1"));
  isShown.set(false);
  loop.runTasks();
  isShown.set(true);
  loop.runTasks();
  EXPECT_THAT(mount.picture(), HasSubstr("c=0"));
}

TEST_F(UserInput, PopoverClosedByTheUserSetsItsBinding) {
  shown = true;
  showAsking([this] { return menuButton(); });
  panel->dismiss(mount.find("popover"));
  EXPECT_EQ(noted, "dismiss ");
  loop.runTasks();
  EXPECT_FALSE(isPopoverThere());
}

TEST_F(UserInput, PopoverIsDismissedWhenThePanelHides) {
  shown = true;
  showAsking([this] { return menuButton(); });
  panel->setVisible(false);
  EXPECT_EQ(noted, "dismiss ");
  EXPECT_TRUE(isPopoverThere()) << "a hidden panel is left alone";
  panel->setVisible(true);
  EXPECT_FALSE(isPopoverThere());
}

TEST_F(UserInput, PopoverThatIsDismissedMayEndThePanelOrShowItAgain) {
  const Binding<bool> ending([] { return true; }, [this](bool) { panel.reset(); });
  show(VStack({}, {Text("a").popover(ending, RectEdge::maxY, [] { return Text("b"); })}));
  panel->setVisible(false);
  EXPECT_FALSE(panel);
  const Binding<bool> insisting([] { return true; }, [this](bool) { panel->setVisible(true); });
  showAsking(
      [&] { return Text("a").popover(insisting, RectEdge::maxY, [] { return Text("b"); }); });
  change();
  panel->setVisible(false);
  EXPECT_TRUE(isPopoverThere());
}

}  // namespace
}  // namespace quillmont
