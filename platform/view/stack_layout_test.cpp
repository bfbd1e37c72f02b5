#include <gtest/gtest.h>

#include "platform/view/View.h"
#include "tests/support/LaidOut.h"

namespace quillmont {
namespace {

using testing::answer;
using testing::box;
using testing::LaidOut;
using testing::small;

const Color kRed = Color::red, kGreen = Color::green, kOrange = Color::orange;

View red(double width, double height) {
  return box(kRed, width, height);
}
View green(double width, double height) {
  return box(kGreen, width, height);
}

TEST(StackLayout, NeighboursAreEightApart) {
  const LaidOut row(HStack({red(10, 10), green(20, 10)}));
  EXPECT_EQ(row.size, (Size{38, 10}));
  EXPECT_EQ(row.figure(kGreen), (Rect{18, 0, 20, 10}));
  const LaidOut column(VStack({}, {red(10, 10), green(10, 20)}));
  EXPECT_EQ(column.size, (Size{10, 38}));
  EXPECT_EQ(column.figure(kGreen), (Rect{0, 18, 10, 20}));
}

TEST(StackLayout, TextsAreEightApartInARow) {
  EXPECT_EQ(LaidOut(HStack({small("a"), small("b")})).size, (Size{18, 13}));
}

TEST(StackLayout, NamedSpacingStandsBetweenEveryPair) {
  const LaidOut row(HStack({.spacing = 3}, {red(10, 10), box(kOrange, 5, 5), green(20, 10)}));
  EXPECT_EQ(row.size.width, 41);
  EXPECT_EQ(row.figure(kOrange).x, 13);
  EXPECT_EQ(row.figure(kGreen).x, 21);
}

TEST(StackLayout, NamedSpacingMayBeNone) {
  EXPECT_EQ(LaidOut(VStack({.spacing = 0}, {red(10, 10), green(10, 20)})).size, (Size{10, 30}));
}

TEST(StackLayout, OfNothingIsNothing) {
  EXPECT_EQ(LaidOut(VStack({}, {})).size, (Size{0, 0}));
  EXPECT_EQ(answer(HStack({}), {100, 100}), (Size{0, 0}));
}

TEST(StackLayout, OfOneHasNoGap) {
  EXPECT_EQ(LaidOut(HStack({red(10, 12)})).size, (Size{10, 12}));
}

TEST(StackLayout, HugsChildrenThatAreNotFlexible) {
  EXPECT_EQ(answer(HStack({red(10, 10), small("ab")}), {300, 300}), (Size{28, 13}));
}

TEST(StackLayout, IsAsBroadAsItsBroadestChild) {
  EXPECT_EQ(answer(VStack({}, {red(10, 10), green(70, 10), small("ab")}), {300, 300}).width, 70);
  EXPECT_EQ(answer(HStack({red(10, 90), green(70, 10)}), {300, 300}).height, 90);
}

TEST(StackLayout, AlignsAcrossAColumn) {
  const auto greenAt = [](HorizontalAlignment alignment) {
    return LaidOut(VStack({.alignment = alignment}, {red(50, 10), green(10, 10)})).figure(kGreen).x;
  };
  EXPECT_EQ(greenAt(HorizontalAlignment::leading), 0);
  EXPECT_EQ(greenAt(HorizontalAlignment::center), 20);
  EXPECT_EQ(greenAt(HorizontalAlignment::trailing), 40);
}

TEST(StackLayout, AlignsAcrossARow) {
  const auto greenAt = [](VerticalAlignment alignment) {
    return LaidOut(HStack({.alignment = alignment}, {red(10, 50), green(10, 10)})).figure(kGreen).y;
  };
  EXPECT_EQ(greenAt(VerticalAlignment::top), 0);
  EXPECT_EQ(greenAt(VerticalAlignment::center), 20);
  EXPECT_EQ(greenAt(VerticalAlignment::bottom), 40);
}

TEST(StackLayout, CentresWhenNothingElseIsSaid) {
  EXPECT_EQ(LaidOut(HStack({red(10, 50), green(10, 10)})).figure(kGreen).y, 20);
  EXPECT_EQ(LaidOut(VStack({}, {red(50, 10), green(10, 10)})).figure(kGreen).x, 20);
}

TEST(Spacer, TakesWhatTheOthersLeave) {
  const LaidOut row(HStack({red(10, 10), Spacer(), green(20, 10)}), 100, 10);
  EXPECT_EQ(row.figure(kRed).x, 0);
  EXPECT_EQ(row.figure(kGreen).x, 80);
  EXPECT_EQ(row.only<SpacerElement>().width, 70) << "there is no gap beside it";
  const LaidOut column(VStack({}, {red(10, 10), Spacer(), green(10, 20)}), 10, 100);
  EXPECT_EQ(column.figure(kGreen).y, 80);
  EXPECT_EQ(column.only<SpacerElement>(), (Rect{5, 10, 0, 70}));
}

TEST(Spacer, KeepsEightWhereThereIsNoRoom) {
  const auto row = HStack({red(10, 10), Spacer(), green(20, 10)});
  EXPECT_EQ(LaidOut(row).size.width, 38);
  EXPECT_EQ(answer(row, {20, 10}).width, 38);
  EXPECT_EQ(answer(row, {0, 0}).width, 38);
  EXPECT_EQ(answer(row, {39, 10}).width, 39);
}

TEST(Spacer, SharesWithOtherSpacers) {
  const LaidOut row(HStack({Spacer(), red(10, 10), Spacer(), green(10, 10), Spacer()}), 110, 10);
  EXPECT_EQ(row.figure(kRed).x, 30);
  EXPECT_EQ(row.figure(kGreen).x, 70);
}

TEST(Spacer, HasNamedSpacingOnBothSides) {
  const auto row = HStack({.spacing = 10}, {red(10, 10), Spacer(), green(20, 10)});
  EXPECT_EQ(LaidOut(row).size.width, 58);
  const LaidOut wide(row, 100, 10);
  EXPECT_EQ(wide.only<SpacerElement>(), (Rect{20, 5, 50, 0}));
  EXPECT_EQ(wide.figure(kGreen).x, 80);
}

TEST(Spacer, GrowsOnlyAlongItsStack) {
  EXPECT_EQ(answer(HStack({Spacer()}), {50, 60}), (Size{50, 0}));
  EXPECT_EQ(answer(VStack({}, {Spacer()}), {50, 60}), (Size{0, 60}));
}

TEST(Spacer, IsSetAsideBeforeOthersAreServed) {
  const LaidOut row(HStack({Fill(kRed), Spacer()}), 100, 10);
  EXPECT_EQ(row.figure(kRed).width, 92);
  EXPECT_EQ(row.only<SpacerElement>(), (Rect{92, 5, 8, 0}));
}

TEST(Spacer, BelongsToTheInnermostStack) {
  const LaidOut panel(VStack({}, {HStack({Spacer(), red(10, 10)}), green(10, 10)}), 50, 100);
  EXPECT_EQ(panel.figure(kRed).x, 40);
  EXPECT_EQ(panel.only<SpacerElement>().height, 0);
}

TEST(Divider, LiesAcrossAColumn) {
  const LaidOut column(VStack({}, {red(10, 10), Divider(), green(20, 10)}), 100, 60);
  EXPECT_EQ(column.only<DividerElement>().width, 100);
  EXPECT_EQ(column.only<DividerElement>().height, 1);
  EXPECT_EQ(column.figure(kGreen).y - column.only<DividerElement>().maxY(), 8);
}

TEST(Divider, StandsAcrossARow) {
  const LaidOut row(HStack({red(10, 10), Divider(), green(20, 10)}), 60, 100);
  EXPECT_EQ(row.only<DividerElement>().width, 1);
  EXPECT_EQ(row.only<DividerElement>().height, 100);
}

TEST(Divider, MakesTheStackTakeTheWholeBreadth) {
  EXPECT_EQ(answer(VStack({}, {red(10, 10), Divider()}), {100, 60}).width, 100);
  EXPECT_EQ(answer(HStack({red(10, 10), Divider()}), {100, 60}).height, 60);
}

TEST(Divider, IsAsLongAsTheOthersWhereNothingIsOffered) {
  const LaidOut menu(VStack({.spacing = 0}, {red(140, 30), Divider(), green(120, 30)}));
  EXPECT_EQ(menu.size, (Size{140, 61}));
  EXPECT_EQ(menu.only<DividerElement>(), (Rect{0, 30, 140, 1}));
}

TEST(StackLayout, ServesTheLeastFlexibleFirst) {
  const LaidOut row(HStack({.spacing = 0}, {Fill(kRed), small("abcdefgh"), green(30, 10)}), 120,
                    13);
  EXPECT_EQ(row.figure(kRed), (Rect{0, 0, 50, 13}));
  EXPECT_EQ(row.text("abcdefgh"), (Rect{50, 0, 40, 13}));
  EXPECT_EQ(row.figure(kGreen).x, 90);
}

TEST(StackLayout, ServesWhatHasAMaximumBeforeWhatHasNone) {
  const LaidOut row(HStack({.spacing = 0}, {Fill(kRed), Fill(kGreen).frame({.maxWidth = 20})}), 100,
                    10);
  EXPECT_EQ(row.figure(kRed).width, 80);
  EXPECT_EQ(row.figure(kGreen), (Rect{80, 0, 20, 10}));
}

TEST(StackLayout, CountsOnlyWhatAChildCanGiveUpAsItsFlexibility) {
  // The wide one can give up 10, the text all of its 60.
  const auto wide = red(90, 10).frame({.maxWidth = 100});
  const LaidOut row(HStack({.spacing = 0}, {small("aaaaa aaaaaa"), wide}), 130, 26);
  EXPECT_EQ(row.text("aaaaa aaaaaa").width, 30);
  EXPECT_EQ(row.figure(kRed).width, 90);
}

TEST(StackLayout, GivesEquallyFlexibleOnesEqualShares) {
  const LaidOut row(HStack({.spacing = 5}, {Fill(kRed), Fill(kGreen), Fill(kOrange)}), 100, 10);
  EXPECT_EQ(row.figure(kRed), (Rect{0, 0, 30, 10}));
  EXPECT_EQ(row.figure(kGreen), (Rect{35, 0, 30, 10}));
  EXPECT_EQ(row.figure(kOrange), (Rect{70, 0, 30, 10}));
}

TEST(StackLayout, SharesDownAColumnToo) {
  const LaidOut column(VStack({.spacing = 0}, {Fill(kRed), green(10, 40), Fill(kOrange)}), 10, 100);
  EXPECT_EQ(column.figure(kRed), (Rect{0, 0, 10, 30}));
  EXPECT_EQ(column.figure(kOrange), (Rect{0, 70, 10, 30}));
}

TEST(StackLayout, ServesEqualsInTheirOrder) {
  // The first breaks in its half of the row, the second has the rest.
  const LaidOut row(HStack({.spacing = 0}, {small("aaaa aaaa"), small("bbbb bbbb")}), 70, 26);
  EXPECT_EQ(row.text("aaaa aaaa"), (Rect{0, 0, 25, 26}));
  EXPECT_EQ(row.text("bbbb bbbb"), (Rect{25, 6.5, 45, 13}));
}

TEST(StackLayout, LeavesWhatOneDoesNotTakeToTheNext) {
  const LaidOut row(HStack({.spacing = 0}, {small("ab"), small("abcdefghijklmnop")}), 90, 13);
  EXPECT_EQ(row.text("abcdefghijklmnop"), (Rect{10, 0, 80, 13}));
}

TEST(StackLayout, LetsAChildThatIsTooLargeStandOut) {
  const auto stack = VStack({.alignment = HorizontalAlignment::leading}, {red(200, 10)});
  EXPECT_EQ(answer(stack, {100, 5}), (Size{200, 10}));
  EXPECT_EQ(LaidOut(stack, 100, 5).figure(kRed), (Rect{-50, -2.5, 200, 10}));
  const LaidOut aligned(stack.frame({.width = 100, .alignment = Alignment::leading}));
  EXPECT_EQ(aligned.figure(kRed), (Rect{0, 0, 200, 10}));
}

TEST(StackLayout, NeverOffersLessThanNothing) {
  const LaidOut row(HStack({red(80, 10), Fill(kGreen), Fill(kOrange)}), 50, 10);
  EXPECT_EQ(row.figure(kGreen).width, 0);
  EXPECT_EQ(row.figure(kOrange).width, 0);
}

TEST(StackLayout, PlacesChildrenInTheSizesThatItReckonedWith) {
  // The second hugs its broken text and leaves some of the row: no reason to share anew.
  const auto row = HStack({.spacing = 0}, {small("aaaaaaa aaaaaaa"), small("bbbbbbbb bbbbbbbb")});
  EXPECT_EQ(answer(row, {150, 60}), (Size{120, 26}));
  const LaidOut laid(row, 150, 60);
  EXPECT_EQ(laid.text("aaaaaaa aaaaaaa"), (Rect{15, 23.5, 75, 13}));
  EXPECT_EQ(laid.text("bbbbbbbb bbbbbbbb"), (Rect{90, 17, 45, 26}));
}

TEST(StackLayout, WithoutABreadthGivesItsChildrenTheBroadestOnes) {
  const LaidOut rows(ScrollView(HStack({.spacing = 0}, {red(10, 30), Divider()})), 50, 100);
  EXPECT_EQ(rows.only<DividerElement>(), (Rect{10, 0, 1, 30}));
}

TEST(KeyedListLayout, StandsInTheStackAroundIt) {
  const auto list = KeyedList({{"r", red(10, 10)}, {"g", green(20, 10)}});
  const LaidOut row(HStack({.spacing = 3}, {list, box(kOrange, 5, 5)}));
  EXPECT_EQ(row.figure(kGreen).x, 13);
  EXPECT_EQ(row.figure(kOrange).x, 36);
  const LaidOut column(VStack({.spacing = 4}, {list, box(kOrange, 5, 5)}));
  EXPECT_EQ(column.figure(kGreen).y, 14);
  EXPECT_EQ(column.figure(kOrange).y, 28);
}

TEST(KeyedListLayout, StandsThereEvenInAnotherList) {
  const auto inner = KeyedList({{"r", red(10, 10)}, {"g", green(10, 10)}});
  const LaidOut row(HStack({KeyedList({{"x", inner}, {"y", box(kOrange, 5, 5)}})}));
  EXPECT_EQ(row.figure(kGreen).x, 18);
  EXPECT_EQ(row.figure(kOrange).x, 36);
}

TEST(KeyedListLayout, OfNothingLeavesNoGap) {
  EXPECT_EQ(LaidOut(HStack({red(10, 10), KeyedList({}), green(10, 10)})).size.width, 28);
}

TEST(KeyedListLayout, OutsideOfAStackIsAColumn) {
  const LaidOut list(KeyedList({{"r", red(10, 10)}, {"g", green(20, 10)}}));
  EXPECT_EQ(list.size, (Size{20, 28}));
  EXPECT_EQ(list.figure(kGreen), (Rect{0, 18, 20, 10}));
  EXPECT_EQ(list.figure(kRed).x, 5);
}

}  // namespace
}  // namespace quillmont
