#include "platform/linux/views/theme.h"

#include <gtest/gtest.h>

namespace quillmont {
namespace {

TEST(Theme, EveryColourButThePlainOnesIsAnotherInTheDark) {
  for (const auto& color :
       {Color::primary, Color::secondary, Color::red, Color::orange, Color::green, Color::cyan,
        Color::separator, Color::controlBackground, Color::windowBackground}) {
    EXPECT_NE(colorIn(color, false), colorIn(color, true)) << static_cast<int>(color.name);
  }
  for (const auto& color : {Color::white, Color::black, Color::clear}) {
    EXPECT_EQ(colorIn(color, false), colorIn(color, true)) << static_cast<int>(color.name);
  }
}

TEST(Theme, OpacityMultipliesTheColoursOwn) {
  EXPECT_NEAR(colorIn(Color::primary, false).alphaF(), 0.847, 0.002);
  EXPECT_NEAR(colorIn(Color::primary.opacity(0.05), false).alphaF(), 0.847 * 0.05, 0.002);
  EXPECT_NEAR(colorIn(Color::red.opacity(0.5).opacity(0.5), false).alphaF(), 0.25, 0.002);
  EXPECT_EQ(colorIn(Color::clear.opacity(1), false).alpha(), 0);
}

TEST(Theme, TextIsDarkOnLightAndLightOnDark) {
  EXPECT_LT(colorIn(Color::primary, false).lightness(), 10);
  EXPECT_GT(colorIn(Color::windowBackground, false).lightness(), 200);
  EXPECT_GT(colorIn(Color::primary, true).lightness(), 245);
  EXPECT_LT(colorIn(Color::windowBackground, true).lightness(), 60);
}

TEST(Theme, CyanIsCyan) {
  for (const bool dark : {false, true}) {
    EXPECT_NEAR(colorIn(Color::cyan, dark).hslHue(), 190, 10) << dark;
    EXPECT_GT(colorIn(Color::cyan, dark).hslSaturation(), 230) << dark;
  }
}

TEST(Theme, NowIsWhatWasSetLast) {
  setDark(true);
  EXPECT_TRUE(isDark());
  EXPECT_EQ(colorNow(Color::green), colorIn(Color::green, true));
  setDark(false);
  EXPECT_EQ(colorNow(Color::green), colorIn(Color::green, false));
}

}  // namespace
}  // namespace quillmont
