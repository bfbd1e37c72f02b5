#include <gtest/gtest.h>

#include "platform/view/View.h"
#include "platform/view/layout.h"
#include "tests/support/LaidOut.h"

namespace quillmont {
namespace {

using testing::answer;
using testing::FakeMetrics;
using testing::LaidOut;
using testing::small;

TEST(TextLayout, HugsItsText) {
  EXPECT_EQ(answer(small("abcd"), {300, 300}), (Size{20, 13}));
  EXPECT_EQ(answer(small("abcd"), {}), (Size{20, 13}));
  EXPECT_EQ(answer(small("abcd"), {20, 13}), (Size{20, 13}));
}

TEST(TextLayout, IsThirteenPointsWhereNothingIsSaid) {
  EXPECT_EQ(answer(Text("abcd"), {}), (Size{26, 16}));
}

TEST(TextLayout, BreaksBetweenWordsAndIsAsWideAsItsWidestLine) {
  EXPECT_EQ(answer(small("aaaa bb cccccc"), {45, 300}), (Size{40, 26}));
}

TEST(TextLayout, BreaksAWordThatIsTooLong) {
  EXPECT_EQ(answer(small("abcdefgh"), {15, 300}), (Size{15, 39}));
}

TEST(TextLayout, KeepsToItsLineLimit) {
  const auto text = small("aaaa bb cccccc dddddd");
  EXPECT_EQ(answer(text.lineLimit(2), {45, 300}), (Size{45, 26}));
  EXPECT_EQ(answer(text.lineLimit(1), {45, 300}), (Size{45, 13}));
  EXPECT_EQ(answer(text.lineLimit(9), {45, 300}), answer(text, {45, 300}));
}

TEST(TextLayout, OnOneLineHugsATextThatFits) {
  EXPECT_EQ(answer(small("abcd").lineLimit(1), {300, 300}), (Size{20, 13}));
}

TEST(TextLayout, KeepsToItsLineLimitAlsoBetweenItsOwnLines) {
  EXPECT_EQ(answer(small("ab\nabcd"), {300, 300}), (Size{20, 26}));
  EXPECT_EQ(answer(small("ab\nabcd").lineLimit(1), {}).height, 13);
}

TEST(TextLayout, LeavesOutLinesThatDoNotFitItsHeight) {
  const auto text = small("aaaa bb cccccc dddddd");
  EXPECT_EQ(answer(text, {45, 300}).height, 39);
  EXPECT_EQ(answer(text, {45, 38}), (Size{45, 26}));
  EXPECT_EQ(answer(text, {45, 26}), (Size{45, 26}));
  EXPECT_EQ(answer(text, {45, 25}), (Size{45, 13}));
}

TEST(TextLayout, KeepsOneLineInWhateverHeight) {
  EXPECT_EQ(answer(small("aaaa bb cccccc"), {45, 5}), (Size{45, 13}));
  EXPECT_EQ(answer(small("aaaa"), {45, 0}), (Size{20, 13}));
  EXPECT_EQ(answer(small("ab\nabcd"), {std::nullopt, 5}).height, 13);
}

TEST(TextLayout, KeepsTheSmallerOfItsLimits) {
  const auto text = small("aaaa bb cccccc dddddd");
  EXPECT_EQ(answer(text.lineLimit(1), {45, 26}).height, 13);
  EXPECT_EQ(answer(text.lineLimit(2), {45, 13}).height, 13);
}

TEST(TextLayout, CanBeOfNoWidth) {
  EXPECT_EQ(answer(small("aaaa bb"), {0, 300}), (Size{0, 13}));
}

TEST(TextLayout, OfNothingIsALineHigh) {
  EXPECT_EQ(answer(small(""), {300, 300}), (Size{0, 13}));
}

TEST(TextLayout, IsWholePixelsWide) {
  FakeMetrics metrics;
  const auto text = VerbatimText("abc").font(Font::system(11));  // 16.5
  EXPECT_EQ(answer(text, {}, metrics).width, 17);
  metrics.pixelsPerPoint = 2;
  EXPECT_EQ(answer(text, {}, metrics).width, 16.5);
  metrics.pixelsPerPoint = 1.25;
  EXPECT_EQ(answer(text, {}, metrics).width, 16.8);
}

TEST(TextLayout, PaysNoPixelForAnInexactWidth) {
  class Inexact : public FakeMetrics {
   public:
    Size textSize(const std::string&, const Font&, std::optional<double>,
                  std::optional<int>) const override {
      return {20.0001, 13};
    }
  };
  EXPECT_EQ(answer(small("abcd"), {}, Inexact()).width, 20);
}

TEST(TextLayout, IgnoresItsAlignmentOutsideOfItself) {
  EXPECT_EQ(answer(small("ab").multilineTextAlignment(TextAlignment::center), {100, 100}),
            (Size{10, 13}));
}

TEST(TextSizes, AreAskedForOnceInALayout) {
  const FakeMetrics metrics;
  TextSizes texts;
  texts.natural("a", Font::body, metrics);
  texts.natural("a", Font::body, metrics);
  EXPECT_EQ(metrics.measured, 1);
}

TEST(TextSizes, TellFontsApart) {
  const FakeMetrics metrics;
  TextSizes texts;
  EXPECT_EQ(texts.natural("aa", Font::system(10), metrics), (Size{10, 13}));
  EXPECT_EQ(texts.natural("aa", Font::system(20), metrics), (Size{20, 25}));
  EXPECT_EQ(texts.natural("aa", Font::system(10, FontWeight::bold), metrics), (Size{10, 13}));
  EXPECT_EQ(metrics.measured, 3);
}

TEST(TextSizes, AreRememberedFromTheLayoutBefore) {
  const FakeMetrics metrics;
  TextSizes texts;
  texts.natural("a", Font::body, metrics);
  for (int layout = 0; layout < 3; ++layout) {
    texts.beginLayout();
    texts.natural("a", Font::body, metrics);
  }
  EXPECT_EQ(metrics.measured, 1);
}

TEST(TextSizes, ForgetWhatALayoutDidNotAskFor) {
  const FakeMetrics metrics;
  TextSizes texts;
  texts.natural("a", Font::body, metrics);
  texts.beginLayout();
  texts.beginLayout();
  texts.natural("a", Font::body, metrics);
  EXPECT_EQ(metrics.measured, 2);
}

TEST(TextSizes, AreAskedForAnewAfterClearing) {
  const FakeMetrics metrics;
  TextSizes texts;
  texts.natural("a", Font::body, metrics);
  texts.beginLayout();
  texts.natural("a", Font::body, metrics);
  texts.clear();
  texts.natural("a", Font::body, metrics);
  EXPECT_EQ(metrics.measured, 2);
}

}  // namespace
}  // namespace quillmont
