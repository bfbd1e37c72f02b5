#include "platform/macos/views/AppKitMetrics.h"

#include <cmath>

#include "platform/macos/views/MountTest.h"
#include "platform/macos/views/text_attributes.h"

namespace quillmont {
namespace {

using testing::MountTest;

const Font kBody = Font::body;

class Metered : public MountTest {
 protected:
  const AppKitMetrics metrics{mount.get()};
};

TEST_F(Metered, ATextIsAsWideAsItNeedsInWholePixels) {
  const auto narrow = metrics.textSize("1 分钟", kBody, {}, {});
  const auto wide = metrics.textSize("15 分钟", kBody, {}, {});
  EXPECT_LT(narrow.width, wide.width);
  EXPECT_EQ(wide.width * metrics.scale(), std::round(wide.width * metrics.scale()));
  EXPECT_EQ(wide.height, 16);
  EXPECT_EQ(metrics.textSize("15 分钟", kBody, 500, {}), wide);
  EXPECT_EQ(metrics.textSize("15 分钟", kBody, wide.width, 1), wide);
}

TEST_F(Metered, ALineIsAsHighAsItsFontAsksInEveryScript) {
  EXPECT_EQ(metrics.textSize("Quillmont", kBody, {}, {}).height, 16);
  EXPECT_EQ(metrics.textSize("磁盘映像", Font::subheadline, {}, {}).height, 14);
  EXPECT_EQ(metrics.textSize("磁盘 disk", Font::caption, {}, {}).height, 13);
  EXPECT_EQ(metrics.textSize("", kBody, {}, {}), (Size{0, 16}));
}

TEST_F(Metered, ABolderTextIsWider) {
  EXPECT_GT(metrics.textSize("Installer", Font::headline, {}, {}).width,
            metrics.textSize("Installer", kBody, {}, {}).width);
}

TEST_F(Metered, ANarrowTextIsHigher) {
  const std::string text = "one two three four five six";
  const auto whole = metrics.textSize(text, kBody, {}, {});
  const auto wrapped = metrics.textSize(text, kBody, whole.width / 2, {});
  EXPECT_GE(wrapped.height, 32);
  EXPECT_LE(wrapped.width, whole.width / 2);
  EXPECT_EQ(metrics.textSize(text, kBody, whole.width / 4, 2).height, 32);
}

TEST_F(Metered, ASingleLineThatIsCutEndsWithALetter) {
  const std::string text = "名字实在太长而在卡片上放不下的一个磁盘映像";
  const auto cut = metrics.textSize(text, kBody, 100, 1);
  EXPECT_EQ(cut.height, 16);
  EXPECT_LE(cut.width, 100);
  EXPECT_GT(cut.width, 100 - 2 * kBody.size);
  EXPECT_GT(metrics.textSize(text, kBody, 3, 1).width, 0);
}

TEST_F(Metered, LinesOfATextsOwnAreKept) {
  EXPECT_EQ(metrics.textSize("one\ntwo\nthree", kBody, {}, {}).height, 48);
}

TEST_F(Metered, BytesThatAreNoTextHaveASizeToo) {
  EXPECT_GT(metrics.textSize("\xff\xfe volume", kBody, {}, {}).width, 0);
}

TEST_F(Metered, ALabelOfThatSizeShowsAllOfItsText) {
  for (const char* text : {"Quillmont", "挂载 DMG 后，空闲超时会自动推出", "15 分钟"}) {
    const NativeLabel label{.text = text, .font = kBody, .color = {}, .lineLimit = 1};
    const auto size = metrics.textSize(text, kBody, {}, 1);
    insert(1, label, {0, 0, size.width, size.height});
    const auto* const field = as<NSTextField>(1);
    const NSSize needed = [[field attributedStringValue] size];
    EXPECT_LE(needed.width, looks(1).size.width + 0.001) << text;
    remove(1);
  }
}

TEST_F(Metered, SymbolsHaveASizeEvenIfNobodyKnowsThem) {
  const auto known = metrics.symbolSize("opticaldiscdrive", Font::system(24));
  EXPECT_GT(known.width, 20);
  EXPECT_LT(known.width, 48);
  const auto larger = metrics.symbolSize("opticaldiscdrive", Font::system(40));
  EXPECT_GT(larger.width, known.width);
  EXPECT_GT(metrics.symbolSize("no such symbol", Font::system(24)).width, 0);
}

TEST_F(Metered, AControlIsAsLargeAsItAsksToBe) {
  const auto toggle = metrics.switchSize();
  EXPECT_GT(toggle.width, toggle.height);
  const auto title = metrics.textSize("开机自动启动", Font::caption, {}, {});
  const auto checkbox = metrics.checkboxSize("开机自动启动", Font::caption);
  EXPECT_GT(checkbox.width, title.width + 10);
  EXPECT_GE(checkbox.height, title.height);
  EXPECT_LT(metrics.checkboxSize("", Font::caption).width, 30);
}

TEST_F(Metered, SegmentsAreAllAsWideAsTheWidestNeeds) {
  const auto one = metrics.segmentsSize({"1小时"});
  const auto three = metrics.segmentsSize({"1分", "1小时", "5分"});
  EXPECT_NEAR(three.width, 3 * one.width, 8);
  EXPECT_EQ(three.height, one.height);
  EXPECT_EQ(metrics.segmentsSize({}).width, 0);
}

TEST_F(Metered, TheScaleIsThatOfTheScreen) {
  EXPECT_EQ(metrics.scale(), [window backingScaleFactor]);
  EXPECT_GE(AppKitMetrics().scale(), 1);
}

}  // namespace
}  // namespace quillmont
