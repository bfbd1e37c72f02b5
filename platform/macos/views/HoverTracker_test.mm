#include "platform/macos/views/HoverTracker.h"

#include "platform/macos/views/MountTest.h"

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::kEjectSymbol;
using testing::kLabel;
using testing::kSquare;
using testing::MountTest;

NativeProperties tracking(NativeContent content) {
  return {std::move(content), "", "", true};
}

class Hover : public MountTest {
 protected:
  void insertTracking(ViewId id, NativeContent content, Rect frame, ViewId parent = kRootView) {
    apply({InsertView{id, parent, 1000, tracking(std::move(content)), frame}});
  }

  /// What AppKit tells the owners of the view's tracking areas.
  void tell(NSView* tracked, bool isInside) {
    @autoreleasepool {
      NSEvent* const event = [NSEvent
          enterExitEventWithType:isInside ? NSEventTypeMouseEntered : NSEventTypeMouseExited
                        location:NSZeroPoint
                   modifierFlags:0
                       timestamp:0
                    windowNumber:[window windowNumber]
                         context:nil
                     eventNumber:0
                  trackingNumber:0
                        userData:nullptr];
      for (NSTrackingArea* area in [tracked trackingAreas]) {
        QMPointerWatcher* const watcher = [area owner];
        isInside ? [watcher mouseEntered:event] : [watcher mouseExited:event];
      }
    }
  }
  void enter(ViewId id) { tell(view(id), true); }
  void leave(ViewId id) { tell(view(id), false); }
};

TEST_F(Hover, ComingAndGoingIsToldForEveryKind) {
  const std::vector<NativeContent> kinds = {NativeGroup{},
                                            kLabel,
                                            kEjectSymbol,
                                            kSquare,
                                            NativeSwitch{false, Color::cyan},
                                            NativeCheckbox{},
                                            NativeSegments{},
                                            NativeButton{},
                                            NativeScroll{}};
  for (const auto& kind : kinds) {
    insertTracking(1, kind, {0, 0, 50, 50});
    enter(1);
    EXPECT_THAT(actions.take(), ElementsAre("enter 1")) << kind.index();
    leave(1);
    EXPECT_THAT(actions.take(), ElementsAre("leave 1")) << kind.index();
    remove(1);
  }
}

TEST_F(Hover, IsNotToldOfViewsThatDoNotAskForIt) {
  insert(1, NativeButton{}, {0, 0, 50, 50});
  EXPECT_EQ([[view(1) trackingAreas] count], 0U);
}

TEST_F(Hover, IsToldInProgramsThatAreNotActiveWhereverTheViewIsSeen) {
  insertTracking(1, NativeButton{}, {0, 0, 50, 50});
  ASSERT_EQ([[view(1) trackingAreas] count], 1U);
  const auto options = [static_cast<NSTrackingArea*>([[view(1) trackingAreas] lastObject]) options];
  EXPECT_EQ(options, static_cast<NSUInteger>(NSTrackingMouseEnteredAndExited |
                                             NSTrackingActiveAlways | NSTrackingInVisibleRect));
}

TEST_F(Hover, IsToldOnce) {
  insertTracking(1, NativeButton{}, {0, 0, 50, 50});
  enter(1);
  enter(1);
  update(1, tracking(NativeButton{}));
  enter(1);
  EXPECT_THAT(actions.take(), ElementsAre("enter 1"));
}

TEST_F(Hover, APanelThatLeavesTheScreenHasBeenLeft) {
  insertTracking(1, NativeButton{}, {0, 0, 50, 50});
  enter(1);
  actions.take();
  mount->setVisible(false);
  EXPECT_THAT(actions.take(), ElementsAre("leave 1"));
}

TEST_F(Hover, OfAViewThatIsRemovedNothingMoreIsTold) {
  insertTracking(1, NativeButton{}, {0, 0, 50, 50});
  enter(1);
  actions.take();
  const auto gone = share(view(1));
  remove(1);
  EXPECT_EQ([[gone trackingAreas] count], 0U);
  turn();
  EXPECT_THAT(actions.take(), IsEmpty());
}

TEST_F(Hover, TrackingMayBeginAndEnd) {
  insert(1, NativeButton{}, {0, 0, 50, 50});
  update(1, tracking(NativeButton{}));
  enter(1);
  EXPECT_THAT(actions.take(), ElementsAre("enter 1"));
  update(1, {NativeButton{}});
  EXPECT_EQ([[view(1) trackingAreas] count], 0U);
}

TEST_F(Hover, WhatHappensWhileChangesAreAppliedIsToldAfterwards) {
  HoverTracker tracker(actions);
  const auto native = adopt([[NSView alloc] initWithFrame:NSMakeRect(0, 0, 10, 10)]);
  tracker.track(7, native);
  tracker.hold();
  tell(native, true);
  turn();
  EXPECT_THAT(actions.take(), IsEmpty());
  tracker.release();
  EXPECT_THAT(actions.take(), IsEmpty());
  EXPECT_TRUE(turnUntil([&] { return !actions.take().empty(); }));
}

TEST_F(Hover, WhatIsScrolledOrMovedAwayUnderThePointerIsLeft) {
  insert(1, NativeScroll{{300, 900}}, {0, 0, 300, 100});
  // The pointer is far away from the window.
  insertTracking(2, NativeButton{}, {10, 10, 24, 24}, 1);
  enter(2);
  EXPECT_THAT(actions.take(), ElementsAre("enter 2"));
  turn();
  EXPECT_THAT(actions.take(), IsEmpty()) << "it is over another window";
  tell(panelView(*mount), true);
  NSClipView* const clip = [as<NSScrollView>(1) contentView];
  [clip scrollToPoint:NSMakePoint(0, 290)];
  EXPECT_TRUE(turnUntil([&] { return !actions.take().empty(); }));
}

TEST_F(Hover, AnActionMayRemoveTheView) {
  insertTracking(1, NativeButton{}, {0, 0, 50, 50});
  actions.onAction = [&] { remove(1); };
  enter(1);
  turn();
  EXPECT_THAT(actions.take(), ElementsAre("enter 1"));
  EXPECT_EQ(view(1), nil);
}

TEST_F(Hover, AnActionMayTakeAwayThePanel) {
  insertTracking(1, NativeButton{}, {0, 0, 50, 50});
  insertTracking(2, NativeButton{}, {60, 0, 50, 50});
  actions.onAction = [&] { mount.reset(); };
  enter(1);
  turn();
  EXPECT_THAT(actions.take(), ElementsAre("enter 1"));
}

}  // namespace
}  // namespace quillmont
