#include "platform/macos/views/PopoverView.h"

#include "platform/macos/views/MountTest.h"
#include "platform/macos/views/PressArea.h"
#include "platform/macos/views/ViewTree.h"

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::kLabel;
using testing::MountTest;

class PopoverOnAView : public MountTest {
 protected:
  PopoverOnAView() {
    apply({insertion(1, NativeButton{}, {280, 360, 24, 24}),
           insertion(2, NativeSwitch{false, Color::cyan}, {0, 0, 38, 22})});
  }

  std::vector<ViewChange> opening() {
    return {insertion(3, NativePopover{RectEdge::maxY}, {0, 0, 140, 65}, 1),
            insertion(4, NativeButton{}, {0, 0, 140, 32}, 3),
            insertion(5, kLabel, {30, 8, 80, 16}, 4),
            insertion(6, NativeButton{}, {0, 33, 140, 32}, 3)};
  }

  /// The window of what the popover shows, as long as it is open.
  NSWindow* popoverWindow() {
    NSWindow* const found = [view(3) window];
    return [found isVisible] ? found : nil;
  }

  NSRect onScreen(ViewId name) {
    const NSRect inWindow = [view(name) convertRect:[view(name) bounds] toView:nil];
    return [[view(name) window] convertRectToScreen:inWindow];
  }

  /// The user closes it, in whichever way.
  void closeByUser() {
    @autoreleasepool {
      [popover() close];
    }
    turn();
  }

  QMPopoverKeeper* keeper() { return static_cast<QMPopoverKeeper*>([popover() delegate]); }
  NSPopover* popover() { return static_cast<PopoverView*>(treeOf(*mount).mounted(3))->popover(); }
};

TEST_F(PopoverOnAView, OpensOnItsAnchorWithItsContent) {
  apply(opening());
  ASSERT_NE(popoverWindow(), nil);
  EXPECT_NE(popoverWindow(), window.get());
  EXPECT_EQ([view(4) window], popoverWindow());
  EXPECT_TRUE(NSEqualSizes([view(3) frame].size, NSMakeSize(140, 65)));
  EXPECT_GE(NSMinY([popoverWindow() frame]), NSMaxY(onScreen(1)));
  [static_cast<QMPressArea*>(view(4)) performClick:nil];
  EXPECT_THAT(actions.take(), ElementsAre("press 4"));
}

TEST_F(PopoverOnAView, FollowsItsContentsSizeAndItsAnchor) {
  apply(opening());
  apply({SetViewFrame{3, {0, 0, 140, 105}}});
  EXPECT_TRUE(NSEqualSizes([view(3) frame].size, NSMakeSize(140, 105)));
  apply({SetViewFrame{1, {180, 360, 30, 24}}});
  EXPECT_TRUE(NSEqualRects([popover() positioningRect], NSMakeRect(0, 0, 30, 24)));
}

TEST_F(PopoverOnAView, GoesWithItsView) {
  apply(opening());
  const auto shown = share(popoverWindow());
  remove(3);
  EXPECT_FALSE([shown isVisible]);
  EXPECT_EQ(view(4), nil);
  turn();
  EXPECT_THAT(actions.take(), IsEmpty());
}

TEST_F(PopoverOnAView, GoesWithItsAnchor) {
  apply(opening());
  const auto shown = share(popoverWindow());
  remove(1);
  EXPECT_FALSE([shown isVisible]);
  EXPECT_EQ(view(3), nil);
}

TEST_F(PopoverOnAView, IsDismissedWhenTheUserClosesIt) {
  apply(opening());
  closeByUser();
  EXPECT_THAT(actions.take(), ElementsAre("dismiss 3"));
  turn();
  EXPECT_EQ(popoverWindow(), nil);
  apply({});
  EXPECT_EQ(popoverWindow(), nil) << "it waits for its view to go";
}

TEST_F(PopoverOnAView, IsTransientButNotClosedByAPressOnItsAnchor) {
  apply(opening());
  EXPECT_EQ([popover() behavior], NSPopoverBehaviorTransient);
  EXPECT_TRUE([keeper() popoverShouldClose:popover()]);
  // The press is the event at hand while AppKit asks.
  [NSApp postEvent:mouseEvent(NSEventTypeLeftMouseDown, NSMakePoint(290, 370), window) atStart:YES];
  [NSApp nextEventMatchingMask:NSEventMaskLeftMouseDown
                     untilDate:[NSDate date]
                        inMode:NSDefaultRunLoopMode
                       dequeue:YES];
  EXPECT_FALSE([keeper() popoverShouldClose:popover()]);
  [NSApp postEvent:mouseEvent(NSEventTypeLeftMouseDown, NSMakePoint(100, 100), window) atStart:YES];
  [NSApp nextEventMatchingMask:NSEventMaskLeftMouseDown
                     untilDate:[NSDate date]
                        inMode:NSDefaultRunLoopMode
                       dequeue:YES];
  EXPECT_TRUE([keeper() popoverShouldClose:popover()]);
}

TEST_F(PopoverOnAView, IsDismissedAndClosedWithThePanel) {
  apply(opening());
  mount->setVisible(false);
  EXPECT_THAT(actions.take(), ElementsAre("dismiss 3"));
  EXPECT_EQ(popoverWindow(), nil);
  mount->setVisible(true);
  EXPECT_EQ(popoverWindow(), nil);
}

TEST_F(PopoverOnAView, WaitsForAPanelThatIsHidden) {
  mount->setVisible(false);
  apply(opening());
  EXPECT_EQ(popoverWindow(), nil);
  mount->setVisible(true);
  EXPECT_NE(popoverWindow(), nil);
  EXPECT_THAT(actions.take(), IsEmpty());
}

TEST_F(PopoverOnAView, APressInsideMayCloseIt) {
  apply(opening());
  actions.onAction = [&] {
    remove(3);
    turn();
  };
  [static_cast<QMPressArea*>(view(4)) performClick:nil];
  EXPECT_THAT(actions.take(), ElementsAre("press 4"));
  EXPECT_EQ(view(3), nil);
}

TEST_F(PopoverOnAView, ItsOwnDismissalMayCloseIt) {
  apply(opening());
  actions.onAction = [&] { remove(3); };
  closeByUser();
  EXPECT_EQ(view(3), nil);
  EXPECT_THAT(actions.take(), ElementsAre("dismiss 3"));
  apply(opening());
  EXPECT_NE(popoverWindow(), nil);
  mount->setVisible(false);
  EXPECT_EQ(view(3), nil);
}

TEST_F(PopoverOnAView, ADismissalMayTakeAwayThePanel) {
  apply(opening());
  actions.onAction = [&] { mount.reset(); };
  mount->setVisible(false);
  EXPECT_EQ(mount, nullptr);
}

TEST_F(PopoverOnAView, APanelThatGoesTakesItAlong) {
  apply(opening());
  const auto shown = share(popoverWindow());
  mount.reset();
  EXPECT_FALSE([shown isVisible]);
  EXPECT_THAT(actions.take(), IsEmpty());
}

}  // namespace
}  // namespace quillmont
