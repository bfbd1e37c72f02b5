#include "platform/linux/desktop/GlobalMouseMonitor.h"

#include <gtest/gtest.h>

#include <vector>

namespace quillmont {
namespace {

constexpr EventMask kLeftAndRight = 10;

/// A display whose buttons a test presses.
struct Fixture {
  RawButtons::Handler press;  ///< empty while nobody listens
  bool tells = true;
  bool outside = true;
  int listened = 0;
  GlobalMouseMonitor monitor{{[this](RawButtons::Handler handler) -> std::shared_ptr<void> {
                                if (!tells) return nullptr;
                                ++listened;
                                press = std::move(handler);
                                return {this, [](Fixture* f) { f->press = nullptr; }};
                              },
                              [this] { return outside; }}};
  std::vector<EventType> events;

  EventHandler record() {
    return [this](const Event* event) { events.push_back(event->type); };
  }

  /// As a user does: down and up. Listening may end in between.
  void click(std::uint32_t button) {
    for (const bool pressed : {true, false}) {
      const auto handler = press;
      if (handler) handler(button, pressed);
    }
  }
};

TEST(GlobalMouseMonitor, TellsWhatItsMaskNames) {
  Fixture f;
  ASSERT_TRUE(f.monitor.add(kLeftAndRight, f.record()));
  for (std::uint32_t button = 1; button <= 9; ++button) f.click(button);
  EXPECT_EQ(f.events, (std::vector{EventType::leftMouseDown, EventType::rightMouseDown}));
}

TEST(GlobalMouseMonitor, TellsOfFurtherButtonsWhereTheyAreAskedFor) {
  Fixture f;
  ASSERT_TRUE(f.monitor.add(eventMaskOf(EventType::otherMouseDown), f.record()));
  for (std::uint32_t button = 1; button <= 8; ++button) f.click(button);
  EXPECT_EQ(f.events, (std::vector{EventType::otherMouseDown, EventType::otherMouseDown}));
}

TEST(GlobalMouseMonitor, ClicksOnOwnWindowsAreNotTold) {
  Fixture f;
  f.outside = false;
  ASSERT_TRUE(f.monitor.add(kLeftAndRight, f.record()));
  f.click(1);
  EXPECT_TRUE(f.events.empty());
}

TEST(GlobalMouseMonitor, GivesNoTokenWhereTheDisplayDoesNotTell) {
  Fixture f;
  f.tells = false;
  EXPECT_FALSE(f.monitor.add(kLeftAndRight, f.record()));
}

TEST(GlobalMouseMonitor, ListensOnlyWhileAMonitorIsInstalled) {
  Fixture f;
  EXPECT_EQ(f.listened, 0);
  const auto token = f.monitor.add(kLeftAndRight, f.record());
  EXPECT_TRUE(f.press);
  f.monitor.remove(*token);
  EXPECT_FALSE(f.press);
  f.monitor.remove(*token);
}

TEST(GlobalMouseMonitor, TwoMonitorsHaveTokensOfTheirOwn) {
  Fixture f;
  const auto first = f.monitor.add(kLeftAndRight, f.record());
  const auto second = f.monitor.add(kLeftAndRight, f.record());
  EXPECT_NE(*first, *second);
  f.click(1);
  EXPECT_EQ(f.events.size(), 2u);
  f.monitor.remove(*first);
  f.click(1);
  EXPECT_EQ(f.events.size(), 3u);
  EXPECT_EQ(f.listened, 1);
}

TEST(GlobalMouseMonitor, AHandlerMayRemoveItselfAndOthers) {
  Fixture f;
  std::optional<EventMonitorToken> first, second;
  first = f.monitor.add(kLeftAndRight, [&](const Event*) {
    f.monitor.remove(*first);
    f.monitor.remove(*second);
  });
  second = f.monitor.add(kLeftAndRight, f.record());
  f.click(1);
  EXPECT_TRUE(f.events.empty());
  EXPECT_FALSE(f.press);
}

TEST(GlobalMouseMonitor, OneThatIsAddedByAHandlerIsToldOfTheNextPress) {
  Fixture f;
  bool added = false;
  ASSERT_TRUE(f.monitor.add(kLeftAndRight, [&](const Event*) {
    if (!std::exchange(added, true)) f.monitor.add(kLeftAndRight, f.record());
  }));
  f.click(1);
  EXPECT_TRUE(f.events.empty());
  f.click(3);
  EXPECT_EQ(f.events, std::vector{EventType::rightMouseDown});
}

TEST(GlobalMouseMonitor, StaysForTheReleaseOfThePressThatEndedIt) {
  Fixture f;
  std::vector<std::pair<std::uint32_t, bool>> seen;
  f.monitor.onButton = [&](std::uint32_t button, bool pressed) {
    seen.emplace_back(button, pressed);
  };
  std::optional<EventMonitorToken> token;
  token = f.monitor.add(kLeftAndRight, [&](const Event*) {
    EXPECT_EQ(f.monitor.toldButton(), 3u);
    f.monitor.remove(*token);
  });
  f.press(3, true);
  EXPECT_EQ(f.monitor.toldButton(), std::nullopt);
  ASSERT_TRUE(f.press);
  const auto press = f.press;
  press(3, false);
  EXPECT_FALSE(f.press);
  EXPECT_EQ(seen, (std::vector<std::pair<std::uint32_t, bool>>{{3, true}, {3, false}}));
}

}  // namespace
}  // namespace quillmont
