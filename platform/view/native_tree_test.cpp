#include "platform/view/native_tree.h"

#include <gmock/gmock.h>

#include "platform/view/View.h"
#include "platform/view/changes.h"
#include "tests/support/FakeMount.h"
#include "tests/support/LaidOut.h"

namespace quillmont {
namespace {

using testing::box;
using testing::FakeMount;
using ::testing::IsEmpty;
using testing::LaidOut;
using testing::small;

NativeNode treeOf(const View& view) {
  return nativeTree(LaidOut(view).root, 1);
}

std::string pictureOf(const View& view) {
  FakeMount mount;
  const auto tree = treeOf(view);
  mount.apply(changesBetween({}, tree), {tree.frame.width, tree.frame.height});
  return mount.picture();
}

template <class Action, class... Arguments>
void call(const NativeNode& node, Action ViewHandlers::*handler, Arguments... arguments) {
  for (const auto& action : actionsOf(node, handler)) action(arguments...);
}

const Binding<bool> kOn([] { return true; }, [](bool) {});

View red() {
  return box(Color::red, 10, 10);
}

View button() {
  return Button([] {}, small("ab"));
}

View control() {
  return Toggle("", kOn);
}

TEST(NativeTree, HasOnlyWhatIsSeen) {
  EXPECT_EQ(pictureOf(VStack({}, {HStack({red(), Spacer(), KeyedList({{"k", red()}})}),
                                  Divider().padding(4), Symbol("gear").frame({.width = 20})})),
            R"view(rectangle red (0 0 10 10)
rectangle red (18 0 10 10)
rectangle separator (4 22 20 1)
symbol gear 13 primary (6 35 16 16)
)view");
}

TEST(NativeTree, HasTheSizeOfThePanel) {
  EXPECT_EQ(treeOf(red().padding(3)).frame, (Rect{0, 0, 16, 16}));
}

TEST(NativeTree, HasBackgroundsBehindAndOverlaysInFront) {
  EXPECT_EQ(pictureOf(red().background(Color::green).overlay(Circle())),
            R"view(rectangle green (0 0 10 10)
rectangle red (0 0 10 10)
circle (0 0 10 10)
)view");
}

TEST(NativeTree, HasAButtonsLabelInsideOfIt) {
  EXPECT_EQ(
      pictureOf(HStack({red(), Button([] {}, small("ab").padding(2).background(Color::green))})),
      R"view(rectangle red (0 4 10 10)
button name=ab (18 0 14 17)
  rectangle green (0 0 14 17)
  label "ab" 10 primary (2 2 10 13)
)view");
}

TEST(NativeTree, NamesAButtonByAllItsTexts) {
  const auto label = HStack({Symbol("power"), small("ab"), Button([] {}, small("cd")), small("")});
  EXPECT_EQ(treeOf(Button([] {}, label)).children[0]->properties.accessibilityLabel, "ab cd");
  EXPECT_EQ(treeOf(Button([] {}, red())).children[0]->properties.accessibilityLabel, "");
  EXPECT_EQ(treeOf(button().accessibilityLabel("else")).children[0]->properties.accessibilityLabel,
            "else");
}

TEST(NativeTree, HasAScrollsContentInItsOwnCoordinates) {
  EXPECT_EQ(pictureOf(VStack({}, {red(), ScrollView(VStack({}, {red(), red()}).padding(3))})
                          .frame({.width = 40, .height = 40})),
            R"view(rectangle red (15 0 10 10)
scroll of 16x34 (12 18 16 22)
  rectangle red (3 3 10 10)
  rectangle red (3 21 10 10)
)view");
}

TEST(NativeTree, ControlBearsWhatIsAddedInItsOwnFrame) {
  EXPECT_EQ(pictureOf(control().help("tip").accessibilityLabel("called").onHover([](bool) {})),
            "switch on cyan name=called help=tip hover (0 0 38 22)\n");
  EXPECT_EQ(pictureOf(button().help("tip")), R"view(button name=ab help=tip (0 0 10 13)
  label "ab" 10 primary (0 0 10 13)
)view");
  EXPECT_EQ(pictureOf(Toggle("a", kOn).toggleStyle(ToggleStyle::checkbox).help("tip")),
            "checkbox on \"a\" 13 primary help=tip (0 0 27 16)\n");
  const Binding<double> one([] { return 1.0; }, [](double) {});
  EXPECT_EQ(pictureOf(SegmentedPicker("", one, {{"a", 1}}).help("tip")),
            "segments [a] help=tip (0 0 26 24)\n");
}

TEST(NativeTree, ControlThatIsSmallerGetsAGroupAroundIt) {
  EXPECT_EQ(pictureOf(HStack({red(), control().padding(2).help("tip")})),
            R"view(rectangle red (0 8 10 10)
group help=tip (18 0 42 26)
  switch on cyan (2 2 38 22)
)view");
  EXPECT_EQ(pictureOf(control().padding(Edges::trailing, 2).help("tip")),
            "group help=tip (0 0 40 22)\n  switch on cyan (0 0 38 22)\n");
  EXPECT_EQ(pictureOf(control().padding(Edges::bottom, 2).help("tip")),
            "group help=tip (0 0 38 24)\n  switch on cyan (0 0 38 22)\n");
  EXPECT_EQ(pictureOf(control().frame({.width = 38, .height = 10}).help("tip")),
            "group help=tip (0 0 38 10)\n  switch on cyan (0 -6 38 22)\n");
}

TEST(NativeTree, WhatIsNoControlGetsAGroupAroundIt) {
  EXPECT_EQ(pictureOf(HStack({red(), small("ab").help("tip")})), R"view(rectangle red (0 2 10 10)
group help=tip (18 0 10 13)
  label "ab" 10 primary (0 0 10 13)
)view");
  EXPECT_EQ(pictureOf(small("ab").accessibilityLabel("called").onHover([](bool) {})),
            R"view(group hover (0 0 10 13)
  group name=called (0 0 10 13)
    label "ab" 10 primary (0 0 10 13)
)view");
  EXPECT_EQ(pictureOf(HStack({.spacing = 0}, {control(), control()}).help("tip")),
            R"view(group help=tip (0 0 76 22)
  switch on cyan (0 0 38 22)
  switch on cyan (38 0 38 22)
)view");
}

TEST(NativeTree, ControlWithAnOverlayGetsAGroupAroundBoth) {
  EXPECT_EQ(pictureOf(control().overlay(red()).help("tip")), R"view(group help=tip (0 0 38 22)
  switch on cyan (0 0 38 22)
  rectangle red (14 6 10 10)
)view");
}

TEST(NativeTree, OpacityIsThatOfAGroup) {
  EXPECT_EQ(pictureOf(control().opacity(0.5)),
            "group opacity=0.5 (0 0 38 22)\n  switch on cyan (0 0 38 22)\n");
  EXPECT_EQ(pictureOf(control().opacity(0.5).help("tip")),
            "group help=tip (0 0 38 22)\n  group opacity=0.5 (0 0 38 22)\n"
            "    switch on cyan (0 0 38 22)\n");
  EXPECT_EQ(pictureOf(red().opacity(1)), "rectangle red (0 0 10 10)\n") << "which changes nothing";
}

TEST(NativeTree, HoverOfAWholeLabelIsTheButtons) {
  std::vector<bool> told;
  const auto label = small("ab").onHover([&](bool isInside) { told.push_back(isInside); });
  const auto tree = treeOf(Button([] {}, label));
  const auto& native = *tree.children[0];
  EXPECT_TRUE(native.properties.tracksHover);
  EXPECT_FALSE(native.children[0]->properties.tracksHover);
  EXPECT_THAT(native.children[0]->handlers, IsEmpty());
  call(native, &ViewHandlers::onHover, true);
  EXPECT_EQ(told, (std::vector{true}));
}

TEST(NativeTree, HoverOfAPartOfALabelStaysThere) {
  const auto part = small("ab").onHover([](bool) {});
  for (const auto& label : {part.padding(Edges::top, 2), part.padding(Edges::leading, 2)}) {
    const auto tree = treeOf(Button([] {}, label));
    EXPECT_FALSE(tree.children[0]->properties.tracksHover);
    EXPECT_TRUE(tree.children[0]->children[0]->properties.tracksHover);
  }
}

TEST(NativeTree, EveryoneIsToldWhoAskedForOneHover) {
  std::string told;
  const auto teller = [&](const char* name) {
    return [&told, name](bool isInside) { told += name + std::string(isInside ? "+" : "-"); };
  };
  const auto inside = Button([] {}, small("ab").onHover(teller("label")));
  const auto tree = treeOf(inside.onHover(teller("button")).onHover(teller("around")));
  call(*tree.children[0], &ViewHandlers::onHover, true);
  EXPECT_EQ(told, "label+button+around+");
}

TEST(NativeTree, PopoverIsAChildOfItsControl) {
  const auto shown = button().popover(kOn, RectEdge::maxY, [] { return red().padding(1); });
  EXPECT_EQ(pictureOf(HStack({red(), shown})), R"view(rectangle red (0 2 10 10)
button name=ab (18 0 10 13)
  label "ab" 10 primary (0 0 10 13)
  popover at top (0 0 12 12)
    rectangle red (1 1 10 10)
)view");
}

TEST(NativeTree, PopoverOfWhatIsNoControlIsAChildOfAGroup) {
  EXPECT_EQ(pictureOf(small("ab").popover(kOn, RectEdge::maxY, [] { return red(); })),
            R"view(group (0 0 10 13)
  label "ab" 10 primary (0 0 10 13)
  popover at top (0 0 10 10)
    rectangle red (0 0 10 10)
)view");
}

TEST(NativeTree, PopoverTakesNothingFromTheTextsAroundItsAnchor) {
  const auto anchor = Text("ab").popover(kOn, RectEdge::maxY, [] { return Text("in"); });
  const auto picture =
      pictureOf(VStack({}, {anchor}).font(Font::system(10)).foregroundColor(Color::red));
  EXPECT_THAT(picture, ::testing::HasSubstr("label \"ab\" 10 red"));
  EXPECT_THAT(picture, ::testing::HasSubstr("label \"in\" 13 primary"));
}

TEST(NativeTree, PopoverIsDismissedByItsBinding) {
  std::vector<bool> set;
  const Binding<bool> shown([] { return true; }, [&](bool value) { set.push_back(value); });
  const auto tree = treeOf(button().popover(shown, RectEdge::maxY, [] { return red(); }));
  const auto& popover = *tree.children[0]->children.back();
  ASSERT_TRUE(std::holds_alternative<NativePopover>(popover.properties.content));
  call(popover, &ViewHandlers::onToggle, false);
  EXPECT_EQ(set, (std::vector{false}));
  EXPECT_THAT(actionsOf(*tree.children[0], &ViewHandlers::onToggle), IsEmpty())
      << "the button presses";
}

TEST(NativeTree, ControlsCallWhatTheirViewsName) {
  std::string called;
  const Binding<bool> isOn([] { return true; }, [&](bool on) { called += on ? "on " : "off "; });
  const Binding<double> tag([] { return 2.0; },
                            [&](double value) { called += std::to_string(int(value)) + " "; });
  const auto tree = treeOf(HStack({Button([&] { called += "pressed "; }, red()), Toggle("", isOn),
                                   SegmentedPicker("", tag, {{"a", 1}, {"b", 2}, {"also b", 2}})}));
  call(*tree.children[0], &ViewHandlers::onPress);
  call(*tree.children[1], &ViewHandlers::onToggle, false);
  const auto& segments = *tree.children[2];
  EXPECT_EQ(std::get<NativeSegments>(segments.properties.content).selected, 1u);
  call(segments, &ViewHandlers::onSelect, 0u);
  call(segments, &ViewHandlers::onSelect, 3u);  // there is none
  EXPECT_EQ(called, "pressed off 1 ");
}

}  // namespace
}  // namespace quillmont
