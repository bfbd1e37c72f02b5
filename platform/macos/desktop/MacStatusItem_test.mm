#include "platform/macos/desktop/MacStatusItem.h"

#import <AppKit/AppKit.h>
#include <gtest/gtest.h>

#include <optional>
#include <vector>

#include "tests/support/accessory_application.h"

namespace quillmont {
namespace {

/// A status item of a program that has an application object.
struct Fixture {
  NSStatusBarButton* view() const { return static_cast<NSStatusBarButton*>(item->view()); }

  NSApplication* const application = ::quillmont::testing::accessoryApplication();
  bool swallows = false;
  std::unique_ptr<MacStatusItem> item =
      std::make_unique<MacStatusItem>(kVariableStatusItemLength, [this] { return swallows; });
};

TEST(MacStatusItem, HasAButtonInAWindowOfTheBar) {
  @autoreleasepool {
    const Fixture f;
    ASSERT_EQ(f.item->button(), f.item.get());
    EXPECT_NE([f.view() window], nil);
    EXPECT_TRUE([[f.view() window] isVisible]);
  }
}

TEST(MacStatusItem, CallsItsActionWithTheButtonAsSender) {
  @autoreleasepool {
    const Fixture f;
    std::vector<Sender> senders;
    f.item->button()->setAction([&](Sender sender) { senders.push_back(sender); });
    [f.view() performClick:nil];
    [f.view() performClick:nil];
    EXPECT_EQ(senders, std::vector<Sender>(2, f.item->button()));
  }
}

TEST(MacStatusItem, DropsAClickThatHasDoneItsWorkAlready) {
  @autoreleasepool {
    Fixture f;
    int clicks = 0;
    f.item->setAction([&](Sender) { ++clicks; });
    f.swallows = true;
    [f.view() performClick:nil];
    EXPECT_EQ(clicks, 0);
    f.swallows = false;
    [f.view() performClick:nil];
    EXPECT_EQ(clicks, 1);
  }
}

TEST(MacStatusItem, AnActionMayReplaceItselfAndTheItem) {
  @autoreleasepool {
    Fixture f;
    int clicks = 0;
    f.item->setAction([&](Sender) {
      f.item->setAction({});
      f.item = nullptr;
      ++clicks;
    });
    [f.view() performClick:nil];
    EXPECT_EQ(clicks, 1);
    EXPECT_EQ(f.item, nullptr);
  }
}

TEST(MacStatusItem, ShowsASymbolThatReadersOfTheScreenCanName) {
  @autoreleasepool {
    const Fixture f;
    f.item->setImage("opticaldiscdrive.fill", "Quillmont");
    ASSERT_NE([f.view() image], nil);
    EXPECT_TRUE([[f.view() title] isEqual:@""]);
    EXPECT_TRUE([[[f.view() image] accessibilityDescription] isEqual:@"Quillmont"]);
  }
}

TEST(MacStatusItem, ShowsItsNameWhereTheSystemLacksTheSymbol) {
  @autoreleasepool {
    const Fixture f;
    f.item->setImage("no.such.symbol", "Quillmont");
    EXPECT_EQ([f.view() image], nil);
    EXPECT_TRUE([[f.view() title] isEqual:@"Quillmont"]);
  }
}

TEST(MacStatusItem, GivesUpItsPlaceWhenItGoes) {
  @autoreleasepool {
    Fixture f;
    NSWindow* const window = [[[f.view() window] retain] autorelease];
    f.item = nullptr;
    EXPECT_FALSE([window isVisible]);
  }
}

}  // namespace
}  // namespace quillmont
