// Presses in other programs cannot be made on a Mac; here the test makes them up.
#include "platform/macos/desktop/GlobalMouseMonitor.h"

#import <AppKit/AppKit.h>
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "tests/gnustep/compat_desktop.h"

namespace quillmont {
namespace {

using testing::globalMonitors;
using testing::pressElsewhere;

constexpr EventMask kLeftAndRight =
    eventMaskOf(EventType::leftMouseDown) | eventMaskOf(EventType::rightMouseDown);

TEST(GlobalMouseMonitor, TellsOfThePressesInItsMask) {
  @autoreleasepool {
    GlobalMouseMonitor mouse;
    std::vector<EventType> told;
    const auto token = mouse.add(kLeftAndRight, [&](const Event* e) { told.push_back(e->type); });
    ASSERT_TRUE(token);
    pressElsewhere(NSEventTypeLeftMouseDown);
    pressElsewhere(NSEventTypeRightMouseDown);
    pressElsewhere(NSEventTypeOtherMouseDown);
    EXPECT_EQ(told, (std::vector{EventType::leftMouseDown, EventType::rightMouseDown}));
  }
}

TEST(GlobalMouseMonitor, TellsNothingOnceItIsRemoved) {
  @autoreleasepool {
    GlobalMouseMonitor mouse;
    int told = 0;
    const auto token = mouse.add(kLeftAndRight, [&](const Event*) { ++told; });
    mouse.remove(*token);
    mouse.remove(*token);
    pressElsewhere(NSEventTypeLeftMouseDown);
    EXPECT_EQ(told, 0);
    EXPECT_EQ(globalMonitors(), 0U);
  }
}

TEST(GlobalMouseMonitor, EachMonitorHasATokenOfItsOwn) {
  @autoreleasepool {
    GlobalMouseMonitor mouse;
    int first = 0, second = 0;
    const auto one = mouse.add(kLeftAndRight, [&](const Event*) { ++first; });
    const auto two = mouse.add(kLeftAndRight, [&](const Event*) { ++second; });
    EXPECT_NE(one, two);
    pressElsewhere(NSEventTypeLeftMouseDown);
    mouse.remove(*one);
    pressElsewhere(NSEventTypeLeftMouseDown);
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 2);
  }
}

TEST(GlobalMouseMonitor, AHandlerMayRemoveItsOwnMonitor) {
  @autoreleasepool {
    GlobalMouseMonitor mouse;
    std::optional<EventMonitorToken> token;
    auto held = std::make_shared<int>(0);
    token = mouse.add(kLeftAndRight, [&mouse, &token, held](const Event*) {
      mouse.remove(*token);
      ++*held;
    });
    pressElsewhere(NSEventTypeLeftMouseDown);
    pressElsewhere(NSEventTypeLeftMouseDown);
    EXPECT_EQ(*held, 1);
    EXPECT_EQ(held.use_count(), 1);
  }
}

TEST(GlobalMouseMonitor, TakesItsMonitorsAlongWhenItGoes) {
  @autoreleasepool {
    {
      GlobalMouseMonitor mouse;
      mouse.add(kLeftAndRight, [](const Event*) {});
      EXPECT_EQ(globalMonitors(), 1U);
    }
    EXPECT_EQ(globalMonitors(), 0U);
  }
}

}  // namespace
}  // namespace quillmont
