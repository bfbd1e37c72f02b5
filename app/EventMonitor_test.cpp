#include "app/EventMonitor.h"

#include <gmock/gmock.h>

#include "tests/support/FakeDesktop.h"

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using testing::FakeDesktop;
using ::testing::IsEmpty;
using ::testing::SizeIs;

TEST(EventMonitor, ConstructionInstallsNothing) {
  FakeDesktop desktop;
  EventMonitor monitor(desktop, 10, [](const Event*) {});
  monitor.stop();
  EXPECT_THAT(desktop.story, IsEmpty());
}

TEST(EventMonitor, StartedItHandsOnWhatItsMaskNames) {
  FakeDesktop desktop;
  std::vector<EventType> seen;
  EventMonitor monitor(desktop, 10, [&](const Event* event) { seen.push_back(event->type); });
  monitor.start();
  desktop.clickElsewhere(EventType::leftMouseDown);
  desktop.clickElsewhere(EventType::otherMouseDown);
  desktop.clickElsewhere(EventType::rightMouseDown);
  EXPECT_THAT(seen, ElementsAre(EventType::leftMouseDown, EventType::rightMouseDown));
}

TEST(EventMonitor, SecondStopFindsNothing) {
  FakeDesktop desktop;
  EventMonitor monitor(desktop, 10, [](const Event*) {});
  monitor.start();
  monitor.stop();
  monitor.stop();
  EXPECT_THAT(desktop.story, ElementsAre("monitor added", "monitor removed"));
}

TEST(EventMonitor, SecondStartLeavesTheFirstMonitorInstalled) {
  FakeDesktop desktop;
  EventMonitor monitor(desktop, 10, [](const Event*) {});
  monitor.start();
  monitor.start();
  monitor.stop();
  EXPECT_THAT(desktop.monitors, SizeIs(1));
}

TEST(EventMonitor, DroppedMonitorIsRemoved) {
  FakeDesktop desktop;
  {
    EventMonitor(desktop, 10, [](const Event*) {}).start();
  }
  EXPECT_THAT(desktop.story, ElementsAre("monitor added", "monitor removed"));
}

TEST(EventMonitor, RefusalLeavesNothingToRemove) {
  FakeDesktop desktop;
  desktop.hasPointer = false;
  {
    EventMonitor(desktop, 10, [](const Event*) {}).start();
  }
  EXPECT_THAT(desktop.story, IsEmpty());
}

}  // namespace
}  // namespace quillmont
