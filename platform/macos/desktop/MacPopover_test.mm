#include "platform/macos/desktop/MacPopover.h"

#import <AppKit/AppKit.h>
#include <gtest/gtest.h>

#include "platform/macos/desktop/MacStatusItem.h"
#include "platform/macos/desktop/PanelView.h"
#include "platform/macos/strings.h"
#include "platform/view/View.h"
#include "tests/support/ManualTime.h"
#include "tests/support/Turns.h"
#include "tests/support/accessory_application.h"

namespace quillmont {
namespace {

using testing::Turns;

struct Model : ObservableObject {
  double width = 0;
};

/// A coloured area as wide as its model says.
struct Area {
  Model* model;
  void connect(StateScope& scope) { scope.observe(*model); }
  View body() const { return Fill(Color::cyan).frame({.width = model->width, .height = 160.0}); }
};

/// A popover with a coloured area in it, and a status item for it to hang from.
struct Fixture {
  Fixture() { [native() setAnimates:NO]; }

  std::shared_ptr<HostingController> fill(View view) {
    auto content = std::make_shared<HostingController>(std::move(view), runLoop);
    popover.setContent(content);
    return content;
  }
  void fill(double width, double height) {
    fill(Fill(Color::cyan).frame({.width = width, .height = height}));
  }
  void show() { popover.show(*item.button(), RectEdge::minY); }

  NSPopover* native() const { return static_cast<NSPopover*>(popover.popover()); }
  QMPanelView* panel() const {
    return static_cast<QMPanelView*>([[native() contentViewController] view]);
  }
  NSSize shownSize() const { return [panel() frame].size; }

  void press(const char* key) {
    NSString* const characters = foundationString(key);
    NSEvent* const event = [NSEvent keyEventWithType:NSEventTypeKeyDown
                                            location:NSZeroPoint
                                       modifierFlags:0
                                           timestamp:0
                                        windowNumber:[[panel() window] windowNumber]
                                             context:nil
                                          characters:characters
                         charactersIgnoringModifiers:characters
                                           isARepeat:NO
                                             keyCode:0];
    [[panel() window] sendEvent:event];
  }

  NSApplication* const application = ::quillmont::testing::accessoryApplication();
  ::quillmont::testing::ManualClock clock;
  ::quillmont::testing::ManualRunLoop runLoop{clock};
  MacStatusItem item{kVariableStatusItemLength, [] { return false; }};
  Model model;
  int closings = 0;
  MacPopover popover{[this] { ++closings; }};
};

constexpr char kEscape[] = "\033";

TEST(MacPopover, ShowsItsContentInItsOwnSizeBelowTheItem) {
  @autoreleasepool {
    Fixture f;
    f.fill(240, 160);
    EXPECT_FALSE(f.popover.isShown());
    f.show();
    EXPECT_TRUE(f.popover.isShown());
    EXPECT_EQ(f.shownSize().width, 240);
    EXPECT_EQ(f.shownSize().height, 160);
    NSWindow* const bar = [static_cast<NSView*>(f.item.view()) window];
    EXPECT_LE(NSMaxY([[f.panel() window] frame]), NSMinY([bar frame]));
  }
}

TEST(MacPopover, FollowsItsContentsSizeWhileItIsShown) {
  @autoreleasepool {
    Fixture f;
    f.model.width = 240;
    f.fill(Area{&f.model});
    f.show();
    EXPECT_EQ(f.shownSize().width, 240);
    f.model.width = 260;
    f.model.objectWillChange().send();
    f.runLoop.runTasks();
    EXPECT_EQ(f.shownSize().width, 260);
    f.fill(200, 100);
    EXPECT_FALSE(f.popover.isShown()) << "other content comes with the next opening";
    f.show();
    EXPECT_EQ(f.shownSize().width, 200);
  }
}

TEST(MacPopover, ClosesOnceWhenItIsTold) {
  @autoreleasepool {
    Fixture f;
    f.fill(240, 160);
    f.popover.performClose(nullptr);
    EXPECT_EQ(f.closings, 0);
    f.show();
    f.popover.performClose(nullptr);
    f.popover.performClose(nullptr);
    EXPECT_FALSE(f.popover.isShown());
    EXPECT_EQ(f.closings, 1);
  }
}

TEST(MacPopover, OpensAgain) {
  @autoreleasepool {
    Fixture f;
    f.fill(240, 160);
    for (int round = 1; round <= 3; ++round) {
      f.show();
      EXPECT_TRUE(f.popover.isShown());
      f.popover.performClose(nullptr);
      EXPECT_FALSE(f.popover.isShown());
      EXPECT_EQ(f.closings, round);
    }
  }
}

TEST(MacPopover, EscapeClosesATransientOneOnly) {
  @autoreleasepool {
    Fixture f;
    f.fill(240, 160);
    f.show();
    f.press(kEscape);
    EXPECT_TRUE(f.popover.isShown());
    f.popover.setBehavior(PopoverBehavior::transient);
    f.press("a");
    EXPECT_TRUE(f.popover.isShown());
    f.press(kEscape);
    EXPECT_FALSE(f.popover.isShown());
  }
}

TEST(MacPopover, TakesTheCommandToCancelForEscape) {
  @autoreleasepool {
    Fixture f;
    f.fill(240, 160);
    f.popover.setBehavior(PopoverBehavior::transient);
    f.show();
    [f.panel() cancelOperation:nil];
    EXPECT_FALSE(f.popover.isShown());
  }
}

TEST(MacPopover, HasTheKeyboardWhileItIsShown) {
  @autoreleasepool {
    Fixture f;
    f.fill(240, 160);
    f.show();
    EXPECT_TRUE([[f.panel() window] isKeyWindow]);
    EXPECT_EQ([[f.panel() window] firstResponder], f.panel());
  }
}

TEST(MacPopover, GivesTheKeyboardBackToTheProgramThatHadIt) {
  @autoreleasepool {
    Fixture f;
    f.fill(240, 160);
    for (int round = 1; round <= 2; ++round) {
      f.show();
      EXPECT_TRUE(Turns::turnUntil([] { return [NSApp isActive]; }));
      EXPECT_TRUE([[f.panel() window] isVisible]);
      f.popover.performClose(nullptr);
      EXPECT_TRUE(Turns::turnUntil([] { return ![NSApp isActive]; })) << round;
    }
  }
}

TEST(MacPopover, ClosingThatEndsAfterTheNextOpeningLeavesItTheKeyboard) {
  @autoreleasepool {
    Fixture f;
    f.fill(240, 160);
    f.show();
    EXPECT_TRUE(Turns::turnUntil([] { return [NSApp isActive]; }));
    // As AppKit says it when a closing that fades out has ended.
    [[f.native() delegate] popoverDidClose:[NSNotification notificationWithName:@"closed"
                                                                         object:f.native()]];
    Turns::turn();
    EXPECT_TRUE([NSApp isActive]);
    EXPECT_TRUE([[f.panel() window] isVisible]);
  }
}

TEST(MacPopover, TabGivesItsFirstControlTheKeyboardThenTheNext) {
  if (![[NSApplication sharedApplication] isFullKeyboardAccessEnabled]) {
    GTEST_SKIP() << "the system's settings keep the keyboard from buttons";
  }
  @autoreleasepool {
    Fixture f;
    f.fill(VStack({}, {Button([] {}, Text("one")), Button([] {}, Text("two"))}));
    f.show();
    f.press("\t");
    NSResponder* const first = [[f.panel() window] firstResponder];
    ASSERT_TRUE([first isKindOfClass:[NSControl class]]);
    f.press("\t");
    NSResponder* const second = [[f.panel() window] firstResponder];
    ASSERT_TRUE([second isKindOfClass:[NSControl class]]);
    EXPECT_GT(NSMinY([static_cast<NSView*>(second) frame]),
              NSMinY([static_cast<NSView*>(first) frame]));
    f.press(kEscape);
    EXPECT_TRUE(f.popover.isShown()) << "it is not transient";
    f.popover.setBehavior(PopoverBehavior::transient);
    f.press(kEscape);
    EXPECT_FALSE(f.popover.isShown()) << "Escape comes from the control to the panel";
  }
}

TEST(MacPopover, WithoutContentItDoesNotComeUp) {
  @autoreleasepool {
    Fixture f;
    f.show();
    EXPECT_FALSE(f.popover.isShown());
    f.popover.performClose(nullptr);
    f.popover.setContent(nullptr);
    f.show();
    EXPECT_FALSE(f.popover.isShown());
  }
}

TEST(MacPopover, DoesNotComeUpOnAnItemThatIsOnNoScreen) {
  @autoreleasepool {
    Fixture f;
    f.fill(240, 160);
    NSView* const view = static_cast<NSView*>(f.item.view());
    [[view window] orderOut:nil];
    f.show();
    EXPECT_FALSE(f.popover.isShown());
    EXPECT_EQ(f.closings, 0);
  }
}

TEST(MacPopover, ContentMayOutliveIt) {
  @autoreleasepool {
    ::quillmont::testing::ManualClock clock;
    ::quillmont::testing::ManualRunLoop runLoop{clock};
    [NSApplication sharedApplication];
    const auto content = std::make_shared<HostingController>(
        Fill(Color::red).frame({.width = 10, .height = 10}), runLoop);
    {
      MacPopover popover([] {});
      popover.setContent(content);
    }
    content->setVisible(true);
    runLoop.runTasks();
  }
}

TEST(MacPopover, IsLaidOutAnewOnAnotherScreenAndInOtherColours) {
  @autoreleasepool {
    Fixture f;
    f.fill(240, 160);
    f.show();
    [f.panel() viewDidChangeBackingProperties];
    [f.panel() viewDidChangeEffectiveAppearance];
    EXPECT_EQ(f.shownSize().width, 240);
  }
}

}  // namespace
}  // namespace quillmont
