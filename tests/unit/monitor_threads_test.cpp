// The monitor on a real queue and a real run loop: what the two threads share is what a thread
// sanitizer has to see here.

#include <gtest/gtest.h>

#include "platform/linux/EventLoop.h"
#include "platform/linux/SystemClock.h"
#include "platform/linux/ThreadQueue.h"
#include "tests/support/TestHost.h"

namespace quillmont::testing {
namespace {

/// A host whose queue, run loop and clock are real; tools and settings stay in memory.
class ThreadedMonitor : public ::testing::Test {
 protected:
  Host host() {
    return {.processes = system.processes,
            .propertyLists = system.propertyLists,
            .defaults = system.defaults,
            .files = system.files,
            .bundle = system.bundle,
            .log = system.log,
            .mainRunLoop = loop,
            .queues = queues,
            .clock = clock,
            .workspace = system.workspace,
            .application = system.application,
            .tools = {},
            .processIdentifier = 999,
            .userIdentifier = 501};
  }

  TestHost system;
  FakeDiskImages images{system};
  EventLoop loop;
  ThreadQueues queues;
  SystemClock clock;
  ConfigManager config{host()};
};

TEST_F(ThreadedMonitor, CyclesRunWhileTheMainThreadUpdatesAndChangesSettings) {
  constexpr int kRounds = 300;
  for (int number = 0; number < 5; ++number) images.attach("Image " + std::to_string(number));
  images.image("Image 3").users = {"bash"};
  const auto monitor = QuillmontDaemon::make<OpenMonitor>(host(), config);
  int published = 0;
  const auto subscription = monitor->observeMountedImages([&](const auto& list) {
    for (const auto& image : list) EXPECT_EQ(image.inUse, image.volumeName == "Image 3");
    ++published;
  });
  for (int round = 0; round < kRounds; ++round) {
    monitor->tick();
    config.toggleExclude("/Users/user/Image 1.dmg");
    config.setTimeoutSeconds(1e12 + round);
    monitor->updateIdleTimesAndCheckTimeout();
    loop.dispatchPending();
  }
  // Each idle update, each cycle (one more was queued at the start) and the subscription itself.
  while (published < 2 * kRounds + 2) loop.dispatchPending();
  EXPECT_EQ(monitor->mountedImages().size(), 5u);
}

}  // namespace
}  // namespace quillmont::testing
