#include "platform/macos/views/ScrollView.h"

#include "platform/macos/views/MountTest.h"

namespace quillmont {
namespace {

using testing::kLabel;
using testing::MountTest;

class Scrolling : public MountTest {
 protected:
  Scrolling() {
    insert(1, NativeScroll{{296, 1000}}, {0, 0, 320, 200});
    insert(2, kLabel, {12, 500, 100, 16}, 1);
  }

  NSScrollView* scroll() { return as<NSScrollView>(1); }
  double offset() { return [[scroll() contentView] bounds].origin.y; }
  void scrollTo(double y) {
    [[scroll() contentView] scrollToPoint:NSMakePoint(0, y)];
    [scroll() reflectScrolledClipView:[scroll() contentView]];
  }
};

TEST_F(Scrolling, TheContentMovesUnderTheFrame) {
  scrollTo(300);
  EXPECT_EQ(looks(2).origin.y, 200);
  EXPECT_TRUE(NSEqualRects(looks(1), NSMakeRect(0, 0, 320, 200)));
}

TEST_F(Scrolling, TheOffsetIsKeptWhileTheContentChanges) {
  scrollTo(300);
  update(1, {NativeScroll{{296, 1200}}});
  insert(3, kLabel, {12, 1100, 100, 16}, 1);
  remove(2);
  apply({SetViewFrame{1, {0, 10, 320, 190}}});
  EXPECT_EQ(offset(), 300);
}

TEST_F(Scrolling, TheOffsetIsNoMoreThanThereIsContentFor) {
  scrollTo(800);
  update(1, {NativeScroll{{296, 450}}});
  EXPECT_EQ(offset(), 250);
  update(1, {NativeScroll{{296, 100}}});
  EXPECT_EQ(offset(), 0);
}

TEST_F(Scrolling, TheContentBeginsAtTheTopAndIsAsWideAsThePanel) {
  update(1, {NativeScroll{{296, 100}}});
  EXPECT_EQ(offset(), 0);
  EXPECT_TRUE([[scroll() documentView] isFlipped]);
  EXPECT_EQ([[scroll() documentView] frame].size.width, 320);
}

TEST_F(Scrolling, ThePanelShowsBehindTheContent) {
  EXPECT_FALSE([scroll() drawsBackground]);
  EXPECT_FALSE([[scroll() contentView] drawsBackground]);
  EXPECT_FALSE([scroll() hasHorizontalScroller]);
}

}  // namespace
}  // namespace quillmont
