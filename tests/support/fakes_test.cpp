// The stand-ins themselves: a test is worth what its fakes are.

#include <gmock/gmock.h>

#include "tests/support/TestHost.h"

namespace quillmont::testing {
namespace {

using ::testing::ElementsAre;
using namespace std::chrono_literals;

TEST(ManualRunLoop, FiresDueTimersInTheOrderOfTime) {
  ManualClock clock;
  ManualRunLoop loop(clock);
  const auto start = clock.now();
  std::vector<std::pair<char, TimePoint>> fired;
  const auto slow = loop.scheduleRepeatingTimer(0.5, [&] { fired.emplace_back('s', clock.now()); });
  const auto fast = loop.scheduleRepeatingTimer(0.2, [&] { fired.emplace_back('f', clock.now()); });
  loop.advance(600ms);
  EXPECT_THAT(fired, ElementsAre(std::pair('f', start + 200ms), std::pair('f', start + 400ms),
                                 std::pair('s', start + 500ms), std::pair('f', start + 600ms)));
  EXPECT_EQ(clock.now(), start + 600ms);
}

TEST(ManualRunLoop, InvalidatedTimerIsSilentAlsoFromItsOwnTask) {
  ManualClock clock;
  ManualRunLoop loop(clock);
  int firings = 0;
  std::unique_ptr<Timer> timer;
  timer = loop.scheduleRepeatingTimer(1, [&] {
    ++firings;
    timer->invalidate();
  });
  loop.advance(5s);
  EXPECT_EQ(firings, 1);
  EXPECT_EQ(loop.scheduledTimers(), 0u);
}

TEST(ManualQueues, TasksRunInOrderWhenTold) {
  ManualQueues queues;
  const auto queue = queues.makeBackgroundQueue("label");
  std::vector<int> order;
  queue->async([&] { order.push_back(1); });
  queue->async([&] { order.push_back(2); });
  EXPECT_TRUE(order.empty());
  EXPECT_TRUE(queues.runTask());
  EXPECT_THAT(order, ElementsAre(1));
  queues.runTasks();
  EXPECT_THAT(order, ElementsAre(1, 2));
  EXPECT_FALSE(queues.runTask());
}

TEST(FakeProcesses, OutputIsThereOnlyAfterTheEndAndOnlyFromAPipe) {
  FakeProcesses processes;
  processes.tools["/tool"] = [](const Command&) { return ToolRun{.output = "x", .status = 3}; };
  auto piped =
      processes.launch({.path = "/tool", .arguments = {}, .standardOutput = ChildOutput::pipe});
  ASSERT_TRUE(piped);
  EXPECT_EQ((*piped)->readStandardOutput(), "");
  EXPECT_EQ((*piped)->waitUntilExit(), 3);
  EXPECT_EQ((*piped)->readStandardOutput(), "x");
  auto inherited = processes.launch({.path = "/tool", .arguments = {}});
  ASSERT_TRUE(inherited);
  (*inherited)->waitUntilExit();
  EXPECT_EQ((*inherited)->readStandardOutput(), "");
  EXPECT_FALSE(processes.launch({.path = "/missing", .arguments = {}}));
  EXPECT_EQ(processes.launches.size(), 3u);
}

TEST(TicketPropertyLists, ReadsBackWhatItGaveOutAndNothingElse) {
  TicketPropertyLists lists;
  const PropertyList list = PropertyListDictionary{{"a", true}};
  EXPECT_EQ(*lists.parse(*lists.xml(list)), list);
  EXPECT_FALSE(lists.parse("a"));
}

TEST(FakeDiskImages, DetachingTakesTheImageOffTheList) {
  TestHost system;
  FakeDiskImages images(system);
  images.attach("A");
  images.attach("B");
  auto tool = system.processes.launch(
      {.path = "/usr/bin/hdiutil", .arguments = {"detach", "/Volumes/A", "-force"}});
  ASSERT_TRUE(tool);
  EXPECT_EQ((*tool)->waitUntilExit(), 0);
  ASSERT_EQ(images.attached.size(), 1u);
  EXPECT_EQ(images.attached.front().mountPoint, "/Volumes/B");
}

}  // namespace
}  // namespace quillmont::testing
