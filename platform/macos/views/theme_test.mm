#include "platform/macos/views/theme.h"

#include <gtest/gtest.h>

namespace quillmont {
namespace {

struct Components {
  double red, green, blue, alpha;
};

Components now(const Color& color) {
  NSColor* const plain = [colorFor(color) colorUsingColorSpace:[NSColorSpace sRGBColorSpace]];
  return {
      [plain redComponent], [plain greenComponent], [plain blueComponent], [plain alphaComponent]};
}

TEST(Theme, OpacityMultipliesTheColoursOwn) {
  @autoreleasepool {
    const double own = now(Color::primary).alpha;
    EXPECT_GT(own, 0.7);
    EXPECT_NEAR(now(Color::primary.opacity(0.05)).alpha, own * 0.05, 0.005);
    EXPECT_NEAR(now(Color::red.opacity(0.5).opacity(0.5)).alpha, 0.25, 0.005);
    EXPECT_EQ(now(Color::clear).alpha, 0);
    EXPECT_EQ(now(Color::clear.opacity(0.5)).alpha, 0);
    EXPECT_NEAR(now(Color::black.opacity(0.05)).alpha, 0.05, 0.005);
    EXPECT_EQ(now(Color::white).alpha, 1);
  }
}

TEST(Theme, CyanIsCyan) {
  @autoreleasepool {
    const auto cyan = now(Color::cyan);
    EXPECT_LT(cyan.red, 0.5);
    EXPECT_GT(cyan.green, 0.6);
    EXPECT_GT(cyan.blue, 0.8);
    EXPECT_EQ(cyan.alpha, 1);
  }
}

TEST(Theme, EveryNameHasAColour) {
  @autoreleasepool {
    for (const auto& color :
         {Color::primary, Color::secondary, Color::red, Color::orange, Color::green, Color::cyan,
          Color::white, Color::black, Color::clear, Color::separator, Color::controlBackground,
          Color::windowBackground}) {
      EXPECT_NE(colorFor(color), nil) << static_cast<int>(color.name);
      EXPECT_NE(colorFor(color.opacity(0.5)), nil) << static_cast<int>(color.name);
    }
  }
}

}  // namespace
}  // namespace quillmont
