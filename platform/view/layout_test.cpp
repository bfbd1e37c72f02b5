#include "platform/view/layout.h"

#include <gtest/gtest.h>

#include "platform/view/View.h"
#include "tests/support/LaidOut.h"

namespace quillmont {
namespace {

using testing::answer;
using testing::box;
using testing::FakeMetrics;
using testing::LaidOut;
using testing::small;

const Color kRed = Color::red, kGreen = Color::green;

View red() {
  return box(kRed, 10, 10);
}

TEST(Padding, KeepsAwayOnEveryNamedEdge) {
  const auto redIn = [](Edges edges) {
    const LaidOut padded(red().padding(edges, 3));
    const Rect frame = padded.figure(kRed);
    return std::vector{frame.x, frame.y, padded.size.width, padded.size.height};
  };
  using Numbers = std::vector<double>;
  EXPECT_EQ(redIn(Edges::all), (Numbers{3, 3, 16, 16}));
  EXPECT_EQ(redIn(Edges::horizontal), (Numbers{3, 0, 16, 10}));
  EXPECT_EQ(redIn(Edges::vertical), (Numbers{0, 3, 10, 16}));
  EXPECT_EQ(redIn(Edges::top), (Numbers{0, 3, 10, 13}));
  EXPECT_EQ(redIn(Edges::bottom), (Numbers{0, 0, 10, 13}));
  EXPECT_EQ(redIn(Edges::leading), (Numbers{3, 0, 13, 10}));
  EXPECT_EQ(redIn(Edges::trailing), (Numbers{0, 0, 13, 10}));
}

TEST(Padding, AddsUp) {
  const LaidOut padded(red().padding(Edges::horizontal, 16).padding(Edges::vertical, 12));
  EXPECT_EQ(padded.size, (Size{42, 34}));
  EXPECT_EQ(padded.figure(kRed), (Rect{16, 12, 10, 10}));
}

TEST(Padding, OffersItsContentTheRest) {
  EXPECT_EQ(LaidOut(Fill(kRed).padding(5), 50, 40).figure(kRed), (Rect{5, 5, 40, 30}));
  EXPECT_EQ(answer(Fill(kRed).padding(5), {6, 6}), (Size{10, 10})) << "never less than nothing";
  EXPECT_EQ(answer(Fill(kRed).padding(5), {}), (Size{20, 20})) << "no offer stays none";
}

TEST(Frame, OffersAndTakesItsFixedLength) {
  const LaidOut framed(Fill(kRed).frame({.width = 30, .height = 20}));
  EXPECT_EQ(framed.size, (Size{30, 20}));
  EXPECT_EQ(framed.figure(kRed), (Rect{0, 0, 30, 20}));
  EXPECT_EQ(answer(Fill(kRed).frame({.width = 30}), {100, 50}), (Size{30, 50}));
  EXPECT_EQ(answer(Fill(kRed).frame({.height = 30}), {100, 50}), (Size{100, 30}));
}

TEST(Frame, CentresItsContent) {
  EXPECT_EQ(LaidOut(red(), 24, 30).figure(kRed), (Rect{7, 10, 10, 10}));
}

TEST(Frame, AlignsItsContentAsItIsTold) {
  const auto redAt = [](Alignment alignment) {
    return LaidOut(red().frame({.width = 30, .height = 20, .alignment = alignment})).figure(kRed);
  };
  EXPECT_EQ(redAt(Alignment::leading), (Rect{0, 5, 10, 10}));
  EXPECT_EQ(redAt(Alignment::trailing), (Rect{20, 5, 10, 10}));
  EXPECT_EQ(redAt({HorizontalAlignment::center, VerticalAlignment::top}), (Rect{10, 0, 10, 10}));
  EXPECT_EQ(redAt({HorizontalAlignment::trailing, VerticalAlignment::bottom}),
            (Rect{20, 10, 10, 10}));
}

TEST(Frame, SmallerThanItsContentLetsItStandOut) {
  const LaidOut framed(red(), 4, 6);
  EXPECT_EQ(framed.size, (Size{4, 6}));
  EXPECT_EQ(framed.figure(kRed), (Rect{-3, -2, 10, 10}));
}

TEST(Frame, WithAMaximumTakesWhatItIsOfferedUpToIt) {
  const auto framed = red().frame({.maxWidth = 50});
  EXPECT_EQ(answer(framed, {40, 40}), (Size{40, 10}));
  EXPECT_EQ(answer(framed, {80, 40}), (Size{50, 10}));
  EXPECT_EQ(answer(framed, {4, 4}), (Size{10, 10})) << "never less than its content";
  EXPECT_EQ(answer(framed, {}), (Size{10, 10})) << "without an offer it is as its content";
}

TEST(Frame, WithoutAnEndFillsWhatItIsOffered) {
  const LaidOut filled(red().frame({.maxWidth = kUnbounded, .maxHeight = kUnbounded}), 100, 60);
  EXPECT_EQ(filled.figure(kRed), (Rect{45, 25, 10, 10}));
  EXPECT_EQ(answer(red().frame({.maxHeight = kUnbounded}), {100, 60}), (Size{10, 60}));
  EXPECT_EQ(answer(red().frame({.maxWidth = kUnbounded}), {100, 60}), (Size{100, 10}));
}

TEST(Frame, WithAMaximumOffersItsContentNoMore) {
  EXPECT_EQ(LaidOut(Fill(kRed).frame({.maxWidth = 50}), 80, 10).figure(kRed),
            (Rect{15, 0, 50, 10}));
}

TEST(Layers, ArePaintedOnWhatStandsInside) {
  const LaidOut outside(red().padding(5).background(kGreen));
  EXPECT_EQ(outside.figure(kGreen), (Rect{0, 0, 20, 20}));
  const LaidOut inside(red().background(kGreen).padding(5));
  EXPECT_EQ(inside.figure(kGreen), (Rect{5, 5, 10, 10}));
}

TEST(Layers, HaveNoSayInTheSize) {
  for (const auto& view :
       {red().background(box(kGreen, 30, 40)), red().overlay(box(kGreen, 30, 40))}) {
    const LaidOut layers(view);
    EXPECT_EQ(layers.size, (Size{10, 10}));
    EXPECT_EQ(layers.figure(kRed), (Rect{0, 0, 10, 10}));
    EXPECT_EQ(layers.figure(kGreen), (Rect{-10, -15, 30, 40}));
  }
}

TEST(Layers, SmallerThanTheViewAreCentredOnIt) {
  EXPECT_EQ(LaidOut(red().overlay(box(kGreen, 4, 6))).figure(kGreen), (Rect{3, 2, 4, 6}));
}

TEST(Layers, AreOfferedTheSizeThatTheViewTook) {
  EXPECT_EQ(LaidOut(small("abcd").background(kGreen), 100, 100).figure(kGreen),
            (Rect{40, 43.5, 20, 13}));
}

TEST(Figures, FillWhatTheyAreOffered) {
  EXPECT_EQ(answer(RoundedRectangle(4), {30, 20}), (Size{30, 20}));
  EXPECT_EQ(answer(Fill(kRed), {30, 20}), (Size{30, 20}));
}

TEST(Figures, AreTenWithoutAnOffer) {
  EXPECT_EQ(answer(RoundedRectangle(4), {}), (Size{10, 10}));
  EXPECT_EQ(answer(Fill(kRed), {30, std::nullopt}), (Size{30, 10}));
  EXPECT_EQ(answer(Circle(), {}), (Size{10, 10}));
}

TEST(Figures, CircleTakesTheLargestSquare) {
  EXPECT_EQ(answer(Circle(), {30, 20}), (Size{20, 20}));
  EXPECT_EQ(answer(Circle(), {6, std::nullopt}), (Size{6, 6}));
  EXPECT_EQ(answer(Circle(), {40, std::nullopt}), (Size{10, 10}));
}

TEST(Controls, HaveTheSizesOfTheScreen) {
  const Binding<bool> on([] { return true; }, [](bool) {});
  const Binding<double> one([] { return 1.0; }, [](double) {});
  EXPECT_EQ(answer(Toggle("", on), {500, 500}), (Size{38, 22}));
  EXPECT_EQ(
      answer(Toggle("ab", on).font(Font::system(10)).toggleStyle(ToggleStyle::checkbox), {5, 5}),
      (Size{30, 14}));
  EXPECT_EQ(answer(SegmentedPicker("", one, {{"ab", 1}, {"c", 2}}), {500, 500}), (Size{64, 24}));
  EXPECT_EQ(answer(Symbol("gear").font(Font::system(16)), {5, 500}), (Size{20, 20}));
}

TEST(Controls, ShowTheirLabelBeforeThemInARow) {
  const Binding<bool> on([] { return true; }, [](bool) {});
  const Binding<double> one([] { return 1.0; }, [](double) {});
  const auto labelled = Toggle("ab", on).font(Font::system(10));
  EXPECT_EQ(answer(labelled, {}), (Size{10 + 8 + 38, 22}));
  EXPECT_EQ(answer(labelled.labelsHidden(), {}), (Size{38, 22}));
  const auto picker = SegmentedPicker("ab", one, {{"c", 1}}).font(Font::system(10));
  EXPECT_EQ(answer(picker, {}), (Size{10 + 8 + 26, 24}));
}

TEST(ScrollView, TakesTheWholeOfferDown) {
  EXPECT_EQ(answer(ScrollView(red()), {100, 60}), (Size{10, 60}));
  EXPECT_EQ(answer(ScrollView(box(kRed, 10, 500)), {100, 60}), (Size{10, 60}));
  EXPECT_EQ(answer(ScrollView(red()), {}), (Size{10, 10}));
}

TEST(ScrollView, OffersItsContentNoHeight) {
  const LaidOut scroll(ScrollView(Fill(kRed)), 100, 60);
  EXPECT_EQ(scroll.figure(kRed), (Rect{0, 0, 100, 10}));
}

TEST(ScrollView, IsAsWideAsItsContent) {
  const LaidOut scroll(ScrollView(red()), 100, 60);
  EXPECT_EQ(scroll.only<ScrollElement>(), (Rect{45, 0, 10, 60}));
}

TEST(ScrollView, BeginsAtTheTopOfItsContent) {
  EXPECT_EQ(LaidOut(ScrollView(box(kRed, 100, 500)), 100, 60).figure(kRed), (Rect{0, 0, 100, 500}));
  EXPECT_EQ(LaidOut(ScrollView(box(kRed, 100, 5)), 100, 60).figure(kRed), (Rect{0, 0, 100, 5}));
}

TEST(ScrollView, HasLinesAcrossItAlsoInARow) {
  EXPECT_EQ(LaidOut(HStack({ScrollView(Divider())}), 50, 60).only<DividerElement>(),
            (Rect{0, 0, 50, 1}));
}

TEST(ScrollView, CountsFromItsOwnCorner) {
  const LaidOut panel(VStack({.spacing = 0}, {box(kGreen, 50, 30), ScrollView(red())}), 50, 100);
  EXPECT_EQ(panel.only<ScrollElement>(), (Rect{20, 30, 10, 70}));
  EXPECT_EQ(panel.figure(kRed), (Rect{0, 0, 10, 10}));
}

TEST(PopoverContent, IsLaidOutOnItsOwn) {
  const Binding<bool> shown([] { return true; }, [](bool) {});
  const auto content = [] { return box(kGreen, 300, 200).padding(2); };
  const LaidOut panel(red().padding(7).popover(shown, RectEdge::maxY, content));
  EXPECT_EQ(panel.size, (Size{24, 24})) << "it takes no room of the panel";
  EXPECT_EQ(panel.figure(kRed), (Rect{7, 7, 10, 10}));
  EXPECT_EQ(panel.figure(kGreen), (Rect{2, 2, 300, 200}));
  EXPECT_EQ(panel.root.children[1].frame, (Rect{0, 0, 304, 204}));
}

TEST(PopoverContent, HasLinesAcrossItsOwnSize) {
  const Binding<bool> shown([] { return true; }, [](bool) {});
  const auto content = [] { return VStack({.spacing = 0}, {box(kGreen, 140, 20), Divider()}); };
  const LaidOut panel(red().popover(shown, RectEdge::maxY, content));
  EXPECT_EQ(panel.only<DividerElement>(), (Rect{0, 20, 140, 1}));
}

TEST(PopoverContent, IsNotThereUnlessItIsPresented) {
  const Binding<bool> hidden([] { return false; }, [](bool) {});
  const auto content = []() -> View { throw std::logic_error("nobody sees it"); };
  EXPECT_EQ(LaidOut(red().popover(hidden, RectEdge::maxY, content)).root.children.size(), 1u);
}

}  // namespace
}  // namespace quillmont
