#include "platform/linux/views/text_lines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFontInfo>
#include <QFontMetricsF>
#include <QGuiApplication>

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using ::testing::Not;

std::vector<QString> texts(const std::vector<TextLine>& lines) {
  std::vector<QString> result;
  for (const auto& line : lines) result.push_back(line.text);
  return result;
}

double natural(const QString& text, const Font& font = {}) {
  return linesOf(text, font, {}, {}).front().width;
}

TEST(TextLines, LettersAreAsManyPixelsHighAsTheirSizeHasPoints) {
  EXPECT_EQ(fontFor(Font::system(13)).pixelSize(), 13);
  EXPECT_EQ(fontFor(Font::system(24, FontWeight::semibold)).weight(), QFont::DemiBold);
  EXPECT_EQ(fontFor(Font::system(0)).pixelSize(), 1);
}

TEST(TextLines, AFontIsKept) {
  const auto font = fontFor(Font::system(13));
  EXPECT_TRUE(fontFor(Font::system(13)).isCopyOf(font));
  EXPECT_NE(fontFor(Font::system(13, FontWeight::bold)), font);
}

TEST(TextLines, AFontIsMadeAnewAfterManyOthers) {
  const auto font = fontFor(Font::system(13));
  for (int size = 100; size < 140; ++size) fontFor(Font::system(size));
  EXPECT_FALSE(fontFor(Font::system(13)).isCopyOf(font));
  EXPECT_EQ(fontFor(Font::system(13)), font);
}

TEST(TextLines, AFontFollowsTheApplications) {
  const auto before = QGuiApplication::font();
  const auto font = fontFor(Font::system(13));
  auto slanted = before;
  slanted.setItalic(true);
  QGuiApplication::setFont(slanted);
  EXPECT_TRUE(fontFor(Font::system(13)).italic());
  QGuiApplication::setFont(before);
  EXPECT_EQ(fontFor(Font::system(13)), font);
}

TEST(TextLines, LinesAreAsFarApartAsOnAMac) {
  EXPECT_EQ(lineHeight(Font::system(10)), 13);
  EXPECT_EQ(lineHeight(Font::system(11)), 14);
  EXPECT_EQ(lineHeight(Font::system(12)), 15);
  EXPECT_EQ(lineHeight(Font::system(13)), 16);
  EXPECT_EQ(lineHeight(Font::system(16)), 20);
}

TEST(TextLines, LettersStandOnAWholePixelWithinTheLine) {
  EXPECT_EQ(baseline(Font::system(13)), 13);
  for (int size = 8; size <= 40; ++size) {
    const auto font = Font::system(size);
    EXPECT_EQ(baseline(font), std::floor(baseline(font))) << size;
    EXPECT_LT(baseline(font), lineHeight(font)) << size;
    EXPECT_GT(baseline(font), lineHeight(font) * 0.6) << size;
  }
}

TEST(TextLines, WithoutAWidthOnlyItsOwnLineEndsBreakAText) {
  EXPECT_THAT(texts(linesOf("one two three four", {}, {}, {})), ElementsAre("one two three four"));
  EXPECT_THAT(texts(linesOf("one\n\ntwo", {}, {}, {})), ElementsAre("one", "", "two"));
  EXPECT_THAT(texts(linesOf("one\n", {}, {}, {})), ElementsAre("one", ""));
  EXPECT_THAT(texts(linesOf("", {}, {}, {})), ElementsAre(""));
}

TEST(TextLines, ATextThatJustFitsIsNotBroken) {
  const QString text = "Research volume";
  EXPECT_THAT(texts(linesOf(text, {}, natural(text), 1)), ElementsAre(text));
}

TEST(TextLines, BreaksBetweenWordsAsLateAsPossible) {
  const auto lines = linesOf("alpha beta gamma", {}, natural("alpha beta") + 2, {});
  EXPECT_THAT(texts(lines), ElementsAre("alpha beta ", "gamma"));
  EXPECT_NEAR(lines[0].width, natural("alpha beta"), 0.1);
}

TEST(TextLines, BreaksAWordThatIsTooLong) {
  const QString word(40, 'm');
  const auto lines = linesOf(word, {}, natural("mmmmmmmmmm") + 1, {});
  EXPECT_EQ(lines.size(), 4U);
}

TEST(TextLines, BreaksChineseBetweenAnyTwoCharacters) {
  const auto lines = linesOf("挂载后空闲超时会自动推出", {}, natural("挂载后空闲超") + 1, {});
  EXPECT_THAT(texts(lines), ElementsAre("挂载后空闲超", "时会自动推出"));
}

TEST(TextLines, OneLineIsCutBetweenLettersAndEndsInAnEllipsis) {
  const QString name(300, 'w');
  const auto lines = linesOf(name, {}, 120, 1);
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_TRUE(lines[0].text.endsWith(QChar(0x2026)));
  EXPECT_LE(lines[0].width, 120.01);
  EXPECT_GT(lines[0].width, 120 - 2 * natural("w"));
}

TEST(TextLines, NoSpaceIsLeftBeforeTheEllipsis) {
  const QString text = "one two three";
  const auto lines = linesOf(text, {}, natural(QString("one ") + QChar(0x2026)) + 0.5, 1);
  EXPECT_EQ(lines.front().text, QString("one") + QChar(0x2026));
}

TEST(TextLines, TheLastOfTooManyLinesTakesTheEllipsis) {
  const double width = natural("alpha beta") + natural(QChar(0x2026)) + 1;
  const auto lines = linesOf("alpha beta gamma delta epsilon zeta", {}, width, 2);
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_FALSE(lines[0].text.endsWith(QChar(0x2026)));
  EXPECT_TRUE(lines[1].text.endsWith(QChar(0x2026)));
  EXPECT_LE(lines[1].width, width + 0.01);
}

TEST(TextLines, ALineEndBeyondTheLimitShowsAsAnEllipsis) {
  EXPECT_EQ(texts(linesOf("one\ntwo", {}, 500, 1)), std::vector{QString("one") + QChar(0x2026)});
  EXPECT_EQ(texts(linesOf("one\ntwo", {}, {}, 1)), std::vector{QString("one") + QChar(0x2026)});
}

TEST(TextLines, ALimitBelowOneIsOne) {
  EXPECT_EQ(linesOf("one\ntwo\nthree", {}, {}, 0).size(), 1U);
  EXPECT_EQ(linesOf("one\ntwo\nthree", {}, {}, -3).size(), 1U);
}

TEST(TextLines, WithoutAnyRoomEveryCharacterHasALine) {
  EXPECT_EQ(linesOf("abc", {}, 0, {}).size(), 3U);
  EXPECT_EQ(linesOf("abc", {}, -1, {}).size(), 3U);
}

TEST(TextLines, AShortenedTextStaysAsItIsInItsOwnWidth) {
  const QString name = "A volume with a name that nobody would call short";
  for (double width = 20; width < 300; width += 3.7) {
    const auto once = linesOf(name, {}, width, 1).front();
    const auto again = linesOf(name, {}, std::ceil(once.width), 1).front();
    EXPECT_EQ(again.text.left(once.text.size() - 1), once.text.chopped(1)) << width;
  }
}

}  // namespace
}  // namespace quillmont
