// Which parts of a panel a redraw lays out anew.

#include <gtest/gtest.h>

#include "platform/view/layout.h"
#include "platform/view/native_tree.h"
#include "tests/support/LaidOut.h"

namespace quillmont {
namespace {

using testing::box;
using testing::FakeMetrics;
using testing::small;

class RedrawLayout : public ::testing::Test {
 protected:
  void show(const View& view) {
    resolver_.resolve(view, root);
    layOut(root, metrics, texts_);
  }

  /// What one view of two beside each other is, and then is: whether both are laid out anew.
  bool isResized(const View& before, const View& after) {
    show(HStack({before, box(Color::red, 10, 10)}));
    show(HStack({after, box(Color::red, 10, 10)}));
    EXPECT_TRUE(root.changed);
    return root.resized;
  }

  Element root;
  FakeMetrics metrics;

 private:
  Resolver resolver_{{}, [] {}};
  TextSizes texts_;
};

TEST_F(RedrawLayout, OfTheSameViewIsNone) {
  show(small("ab"));
  EXPECT_TRUE(root.resized);
  show(small("ab"));
  EXPECT_FALSE(root.changed);
  EXPECT_FALSE(root.resized);
}

TEST_F(RedrawLayout, StopsAtATextThatIsAsWideAsBefore) {
  EXPECT_FALSE(isResized(small("00:01"), small("00:02")));
}

TEST_F(RedrawLayout, FollowsATextThatIsWider) {
  EXPECT_TRUE(isResized(small("99:59"), small("100:00")));
  EXPECT_EQ(root.children[1].frame.x, 38);
}

TEST_F(RedrawLayout, FollowsATextThatBreaksOtherwise) {
  const auto narrow = [](const char* text) { return small(text).frame({.width = 22}); };
  EXPECT_TRUE(isResized(narrow("aaaa bb"), narrow("aa bbbb")));
  EXPECT_EQ(root.children[0].children[0].frame.width, 20);
  EXPECT_FALSE(isResized(narrow("aa bbbb"), narrow("aa b bb"))) << "it stays as large";
}

TEST_F(RedrawLayout, StopsAtAnotherColour) {
  EXPECT_FALSE(isResized(small("ab"), small("ab").foregroundColor(Color::red)));
  EXPECT_FALSE(isResized(Circle().fill(Color::red), Circle().fill(Color::green)));
}

TEST_F(RedrawLayout, FollowsAnotherFontAndAnotherLimit) {
  EXPECT_TRUE(isResized(small("ab"), VerbatimText("ab")));
  EXPECT_TRUE(isResized(small("a\nb"), small("a\nb").lineLimit(1)));
}

TEST_F(RedrawLayout, FollowsWhatArrangesOthers) {
  EXPECT_TRUE(isResized(small("ab").padding(2), small("ab").padding(3)));
  EXPECT_TRUE(isResized(small("ab").frame({.width = 30}), small("ab").frame({.width = 40})));
  EXPECT_TRUE(isResized(VStack({}, {small("ab")}), VStack({}, {small("ab"), small("cd")})));
}

TEST_F(RedrawLayout, FollowsAViewOfAnotherKind) {
  EXPECT_TRUE(isResized(small("ab"), box(Color::red, 10, 13)));
}

TEST_F(RedrawLayout, MakesANewNativeViewOfWhatLooksOtherwise) {
  show(HStack({small("ab"), small("same")}));
  const auto before = nativeTree(root, 1);
  show(HStack({small("cd"), small("same")}));
  const auto after = nativeTree(root, 1);
  EXPECT_NE(before.children[0], after.children[0]);
  EXPECT_EQ(before.children[1], after.children[1]);
}

}  // namespace
}  // namespace quillmont
