#include "platform/macos/views/AppKitMount.h"

#include "platform/macos/views/LabelView.h"
#include "platform/macos/views/MountTest.h"
#include "platform/macos/views/ScrollView.h"
#include "platform/macos/views/ShapeView.h"

namespace quillmont {
namespace {

using ::testing::IsEmpty;
using testing::kEjectSymbol;
using testing::kLabel;
using testing::kSquare;
using testing::MountTest;

class Mount : public MountTest {
 protected:
  /// Back to front.
  std::vector<NSView*> stack(ViewId parent) {
    std::vector<NSView*> result;
    for (NSView* inner in [view(parent) subviews]) result.push_back(inner);
    return result;
  }
};

const std::vector<NativeContent> kKinds = {
    NativeGroup{},
    kLabel,
    kEjectSymbol,
    kSquare,
    NativeSwitch{false, Color::cyan},
    NativeCheckbox{false, "Launch", {}, {}},
    NativeSegments{{"1", "5"}, {}},
    NativeButton{},
    NativeScroll{{100, 300}},
};

TEST_F(Mount, EveryKindIsAViewOfItsOwnAtItsFrame) {
  for (ViewId kind = 1; kind <= kKinds.size(); ++kind) {
    @autoreleasepool {
      insert(kind, kKinds[kind - 1], {10, 20, 100, 30});
      ASSERT_NE(view(kind), nil) << kind;
      EXPECT_TRUE(NSEqualRects(looks(kind), NSMakeRect(10, 20, 100, 30))) << kind;
      apply({SetViewFrame{kind, {15, 25.5, 90, 28}}});
      EXPECT_TRUE(NSEqualRects(looks(kind), NSMakeRect(15, 25.5, 90, 28))) << kind;
      const NSView* const same = view(kind);
      update(kind, {kKinds[kind - 1], "Help"});
      EXPECT_EQ(view(kind), same) << kind;
      EXPECT_TRUE([[view(kind) toolTip] isEqualToString:@"Help"]) << kind;
      update(kind, {kKinds[kind - 1]});
      EXPECT_EQ([[view(kind) toolTip] length], 0U) << kind;
      remove(kind);
      EXPECT_EQ(view(kind), nil) << kind;
      EXPECT_EQ([[panelView(*mount) subviews] count], 0U) << kind;
    }
  }
  EXPECT_THAT(actions.take(), IsEmpty());
}

TEST_F(Mount, TheRootHasThePanelsSizeAndBeginsAtTheTop) {
  mount->apply({}, {320, 233.5});
  EXPECT_TRUE(NSEqualSizes([panelView(*mount) frame].size, NSMakeSize(320, 233.5)));
  EXPECT_TRUE([panelView(*mount) isFlipped]);
}

TEST_F(Mount, ChildrenAreWhereTheirParentIs) {
  insert(1, NativeGroup{}, {100, 50, 80, 80});
  insert(2, kSquare, {5, 6, 20, 16}, 1);
  EXPECT_TRUE(NSEqualPoints(looks(2).origin, NSMakePoint(105, 56)));
  insert(3, NativeScroll{{80, 500}}, {0, 100, 80, 100});
  insert(4, kSquare, {7, 30, 20, 16}, 3);
  EXPECT_TRUE(NSEqualPoints(looks(4).origin, NSMakePoint(7, 130)));
}

TEST_F(Mount, LaterChildrenAreInFrontAndMovesChangeThat) {
  insert(1, kSquare, {0, 0, 50, 50});
  insert(2, kSquare, {0, 0, 50, 50});
  EXPECT_EQ(stack(kRootView), (std::vector{view(1), view(2)}));
  apply({MoveView{1, 1}});
  EXPECT_EQ(stack(kRootView), (std::vector{view(2), view(1)}));
  apply({InsertView{3, kRootView, 0, {kSquare}, {0, 0, 60, 50}}});
  EXPECT_EQ(stack(kRootView), (std::vector{view(3), view(2), view(1)}));
  apply({MoveView{3, 2}});
  EXPECT_EQ(stack(kRootView), (std::vector{view(2), view(1), view(3)}));
  apply({MoveView{3, 0}, MoveView{1, 1}});
  EXPECT_EQ(stack(kRootView), (std::vector{view(3), view(1), view(2)}));
}

TEST_F(Mount, ShadowAndStrokeReachBeyondTheFrame) {
  NativeShape shape{.fill = Color::white, .stroke = Stroke{Color::black, 6}};
  insert(1, shape, {20, 20, 40, 40});
  EXPECT_TRUE(NSEqualRects([view(1) frame], NSMakeRect(17, 17, 46, 46)));
  shape.stroke = {};
  shape.shadow = Shadow{Color::black, 2, {0, 1}};
  update(1, {shape});
  EXPECT_TRUE(NSEqualRects([view(1) frame], NSMakeRect(14, 15, 52, 52)));
  EXPECT_TRUE(NSEqualRects(as<QMShapeView>(1)->outlineRect, NSMakeRect(6, 5, 40, 40)));
  update(1, {NativeShape{.fill = Color::white}});
  EXPECT_TRUE(NSEqualRects([view(1) frame], NSMakeRect(20, 20, 40, 40)));
}

TEST_F(Mount, OpacityHoldsForAllThatIsInside) {
  insert(1, NativeGroup{}, {0, 0, 50, 50});
  update(1, {NativeGroup{}, "", "", false, 0.5});
  EXPECT_NEAR([view(1) alphaValue], 0.5, 1e-6);
  update(1, {NativeGroup{}});
  EXPECT_EQ([view(1) alphaValue], 1);
}

TEST_F(Mount, ColoursFollowTheAppearance) {
  insert(1, NativeShape{.fill = Color::controlBackground}, {0, 0, 50, 50});
  insert(2, NativeShape{.fill = Color::primary.opacity(0.5)}, {60, 0, 50, 50});
  const auto whiteness = [&](ViewId figure) { return [pixel(view(figure), 10, 10) redComponent]; };
  [window setAppearance:[NSAppearance appearanceNamed:NSAppearanceNameAqua]];
  const double light = whiteness(1), lightInk = whiteness(2);
  [window setAppearance:[NSAppearance appearanceNamed:NSAppearanceNameDarkAqua]];
  EXPECT_LT(whiteness(1), light - 0.5);
  EXPECT_NE(whiteness(2), lightInk);
  [window setAppearance:[NSAppearance appearanceNamed:NSAppearanceNameAqua]];
  EXPECT_NEAR(whiteness(1), light, 0.01);
}

TEST_F(Mount, ALabelShowsItsTextAsItIs) {
  auto label = kLabel;
  label.text = "<b>Disk</b> & 磁盘";
  label.lineLimit = 1;
  label.alignment = TextAlignment::center;
  insert(1, label, {0, 0, 300, 16});
  auto* const field = as<QMLabelView>(1);
  EXPECT_TRUE([[field stringValue] isEqualToString:@"<b>Disk</b> & 磁盘"]);
  EXPECT_FALSE([field isEditable]);
  EXPECT_FALSE([field isSelectable]);
  EXPECT_EQ([field maximumNumberOfLines], 1);
  NSParagraphStyle* const style =
      [[field attributedStringValue] attribute:NSParagraphStyleAttributeName
                                       atIndex:0
                                effectiveRange:nullptr];
  EXPECT_EQ([style alignment], NSTextAlignmentCenter);
  EXPECT_EQ([style lineBreakMode], NSLineBreakByTruncatingTail);
}

TEST_F(Mount, FiguresLetTheMouseThroughUnlessTheyAskForIt) {
  insert(1, NativeButton{}, {0, 0, 100, 100});
  for (const NativeContent& figure :
       {NativeContent(kLabel), NativeContent(kEjectSymbol), NativeContent(kSquare)}) {
    insert(2, figure, {0, 0, 100, 100});
    const auto hit = [&] {
      NSView* const panel = panelView(*mount);
      return [panel hitTest:[panel convertPoint:NSMakePoint(50, 50) toView:[panel superview]]];
    };
    EXPECT_EQ(hit(), view(1)) << figure.index();
    update(2, {figure, "Help"});
    EXPECT_EQ(hit(), view(2)) << figure.index();
    update(2, {figure, "", "", true});
    EXPECT_EQ(hit(), view(2)) << figure.index();
    remove(2);
  }
}

TEST_F(Mount, TheFirstClickCounts) {
  for (ViewId kind = 1; kind <= kKinds.size(); ++kind) {
    if (std::holds_alternative<NativeScroll>(kKinds[kind - 1])) continue;
    insert(kind, kKinds[kind - 1], {10, 20, 100, 30});
    EXPECT_TRUE([view(kind) acceptsFirstMouse:nil]) << kind;
  }
}

TEST_F(Mount, AnIdentityMayComeBackBelowAnotherView) {
  insert(1, NativeGroup{}, {0, 0, 50, 50});
  insert(2, kLabel, {0, 0, 50, 16}, 1);
  insert(3, NativeGroup{}, {100, 0, 50, 50});
  apply({RemoveView{2}, insertion(2, kLabel, {0, 0, 50, 16}, 3)});
  EXPECT_EQ([view(2) superview], view(3));
}

TEST_F(Mount, ChangesThatNameNothingChangeNothing) {
  insert(1, kLabel, {0, 0, 50, 16});
  apply({insertion(1, NativeGroup{}, {}), insertion(2, kLabel, {}, 99), RemoveView{98},
         RemoveView{kRootView}, MoveView{97, 0}, UpdateView{96, {kLabel}},
         UpdateView{1, {NativeGroup{}}}, SetViewFrame{95, {}}});
  EXPECT_EQ([[panelView(*mount) subviews] count], 1U);
  EXPECT_NE(as<QMLabelView>(1), nil);
}

TEST_F(Mount, AMountThatGoesFirstLeavesAnEmptyPanel) {
  insert(1, NativeGroup{}, {0, 0, 50, 50});
  insert(2, NativeButton{}, {0, 0, 50, 50}, 1);
  const auto panel = share(panelView(*mount));
  mount.reset();
  EXPECT_EQ([[panel subviews] count], 0U);
  EXPECT_EQ([panel window], window.get());
  [panel removeFromSuperview];
}

TEST_F(Mount, AWindowThatGoesFirstLeavesThePanelToTheMount) {
  insert(1, NativeButton{}, {0, 0, 50, 50});
  [panelView(*mount) removeFromSuperview];
  insert(2, kLabel, {0, 0, 50, 16});
  EXPECT_NE(view(2), nil);
  mount->setVisible(false);
  mount->appearanceDidChange();
}

}  // namespace
}  // namespace quillmont
