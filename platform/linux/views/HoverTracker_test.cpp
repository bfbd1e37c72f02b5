#include "platform/linux/views/HoverTracker.h"

#include <QScrollArea>
#include <QScrollBar>

#include "platform/linux/views/MountTest.h"

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
  void insertTracking(ViewId id, NativeContent content, Rect frame) {
    apply({InsertView{id, kRootView, 1000, tracking(std::move(content)), frame}});
  }
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
    EXPECT_FALSE(widget(1)->testAttribute(Qt::WA_TransparentForMouseEvents)) << kind.index();
    enter(widget(1));
    EXPECT_THAT(actions.take(), ElementsAre("enter 1")) << kind.index();
    leave(widget(1));
    EXPECT_THAT(actions.take(), ElementsAre("leave 1")) << kind.index();
    remove(1);
  }
}

TEST_F(Hover, IsNotToldOfViewsThatDoNotAskForIt) {
  insert(1, NativeButton{}, {0, 0, 50, 50});
  enter(widget(1));
  EXPECT_THAT(actions.take(), IsEmpty());
}

TEST_F(Hover, IsToldOnce) {
  insertTracking(1, NativeButton{}, {0, 0, 50, 50});
  enter(widget(1));
  enter(widget(1));
  update(1, tracking(NativeButton{}));
  settle();
  EXPECT_THAT(actions.take(), ElementsAre("enter 1"));
}

TEST_F(Hover, AViewThatIsHiddenUnderThePointerIsLeft) {
  insertTracking(1, NativeButton{}, {0, 0, 50, 50});
  enter(widget(1));
  actions.take();
  mount->widget()->hide();
  EXPECT_THAT(actions.take(), ElementsAre("leave 1"));
}

TEST_F(Hover, OfAViewThatIsRemovedNothingMoreIsTold) {
  insertTracking(1, NativeButton{}, {0, 0, 50, 50});
  enter(widget(1));
  actions.take();
  remove(1);
  settle();
  EXPECT_THAT(actions.take(), IsEmpty());
}

TEST_F(Hover, TrackingMayBeginAndEnd) {
  insert(1, NativeButton{}, {0, 0, 50, 50});
  update(1, tracking(NativeButton{}));
  enter(widget(1));
  EXPECT_THAT(actions.take(), ElementsAre("enter 1"));
  update(1, {NativeButton{}});
  leave(widget(1));
  EXPECT_THAT(actions.take(), IsEmpty());
}

TEST_F(Hover, WhatHappensWhileChangesAreAppliedIsToldAfterwards) {
  HoverTracker tracker(actions);
  QWidget view;
  view.resize(10, 10);
  tracker.track(7, &view);
  tracker.hold();
  enter(&view);
  settle();
  EXPECT_THAT(actions.take(), IsEmpty());
  tracker.release();
  EXPECT_THAT(actions.take(), IsEmpty());
  settle();
  EXPECT_THAT(actions.take(), ElementsAre("enter 7"));
}

TEST_F(Hover, WhatIsScrolledOrMovedAwayUnderThePointerIsLeft) {
  insert(1, NativeScroll{{300, 900}}, {0, 0, 300, 100});
  for (ViewId id = 2; id <= 3; ++id) {
    const double y = id == 2 ? 10 : 300;
    apply({InsertView{id, 1, 1000, tracking(NativeButton{}), {10, y, 24, 24}}});
  }
  QCursor::setPos(widget(2)->mapToGlobal(QPoint(12, 12)));
  enter(widget(2));
  settle();
  EXPECT_THAT(actions.take(), ElementsAre("enter 2"));
  dynamic_cast<QScrollArea*>(widget(1))->verticalScrollBar()->setValue(290);
  settle();
  EXPECT_THAT(actions.take(), ElementsAre("leave 2", "enter 3"));
  apply({SetViewFrame{3, {150, 300, 24, 24}}});
  settle();
  EXPECT_THAT(actions.take(), ElementsAre("leave 3"));
}

TEST_F(Hover, AnActionMayRemoveTheView) {
  insertTracking(1, NativeButton{}, {0, 0, 50, 50});
  actions.onAction = [&] { remove(1); };
  enter(widget(1));
  settle();
  EXPECT_THAT(actions.take(), ElementsAre("enter 1"));
  EXPECT_EQ(widget(1), nullptr);
}

}  // namespace
}  // namespace quillmont
