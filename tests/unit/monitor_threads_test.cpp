// The monitor on a real queue and a real run loop: what the two threads share is what a thread
// sanitizer has to see here.

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <utility>

#include "platform/linux/EventLoop.h"
#include "platform/linux/background_thread.h"
#include "platform/posix/SystemClock.h"
#include "platform/posix/ThreadQueue.h"
#include "tests/support/SharedLog.h"
#include "tests/support/TestHost.h"

namespace quillmont::testing {
namespace {

/// The real time, in which sleeping is over at once.
class RestlessClock : public SystemClock {
 public:
  void sleep(std::chrono::microseconds) override { std::this_thread::yield(); }
};

/// Thread queues that know how many of their tasks have not ended.
class CountingQueues : public SerialQueues {
 public:
  std::unique_ptr<SerialQueue> makeBackgroundQueue(const std::string& label) override {
    return std::make_unique<CountingQueue>(label, unfinished);
  }

  std::atomic<int> unfinished = 0;

 private:
  class CountingQueue : public SerialQueue {
   public:
    CountingQueue(const std::string& label, std::atomic<int>& unfinished)
        : unfinished_(unfinished), queue_(label, kBackgroundThread) {}
    void async(Task task) override {
      ++unfinished_;
      queue_.async([this, task = std::move(task)] {
        task();
        --unfinished_;
      });
    }

   private:
    std::atomic<int>& unfinished_;
    ThreadQueue queue_;
  };
};

/// A host whose queue, run loop and clock are real; tools and settings stay in memory. The timers
/// are stopped: the tests tick by themselves.
class ThreadedMonitor : public ::testing::Test {
 protected:
  ThreadedMonitor() {
    for (int number = 0; number < 5; ++number) images.attach("Image " + std::to_string(number));
    images.image("Image 3").users = {"bash"};
  }

  Host host() {
    return {.processes = system.processes,
            .propertyLists = system.propertyLists,
            .defaults = system.defaults,
            .files = system.files,
            .bundle = system.bundle,
            .log = log,
            .mainRunLoop = loop,
            .queues = queues,
            .clock = clock,
            .workspace = system.workspace,
            .application = system.application,
            .desktop = system.desktop,
            .tools = {},
            .processIdentifier = 999,
            .userIdentifier = 501};
  }

  std::shared_ptr<OpenMonitor> start() {
    const auto monitor = QuillmontDaemon::make<OpenMonitor>(host(), config);
    monitor->stop();
    return monitor;
  }

  /// Until everything that was queued and handed over has run.
  void settle(const std::shared_ptr<OpenMonitor>& monitor) {
    while (queues.unfinished > 0 || monitor.use_count() > 1) loop.dispatchPending();
  }

  TestHost system;
  FakeDiskImages images{system};
  SharedLog log;
  EventLoop loop;
  CountingQueues queues;
  RestlessClock clock;
  ConfigManager config{host()};
};

TEST_F(ThreadedMonitor, CyclesRunWhileTheMainThreadUpdatesAndChangesSettings) {
  constexpr int kRounds = 300;
  config.setTimeoutSeconds(1e12);
  const auto monitor = start();
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
  settle(monitor);
  // Each idle update, each cycle (one more was queued at the start) and the subscription itself.
  EXPECT_EQ(published, 2 * kRounds + 2);
  EXPECT_EQ(monitor->mountedImages().size(), 5u);
}

TEST_F(ThreadedMonitor, EjectionsRunWhileTheMainThreadRequestsMoreAndWaitsForThem) {
  constexpr int kRounds = 100;
  images.detachStatus = 1;
  config.setTimeoutSeconds(0);
  const auto monitor = start();
  for (int round = 0; round < kRounds; ++round) {
    monitor->tick();
    monitor->userForceEject("/Volumes/Image 0", "Image 0");
    monitor->updateIdleTimesAndCheckTimeout();
    monitor->waitForPendingEjects();
    loop.dispatchPending();
  }
  settle(monitor);
  std::size_t failures = 0;
  for (const auto& line : log.lines()) failures += line.starts_with("Failed to eject: ") ? 1 : 0;
  EXPECT_GE(failures, static_cast<std::size_t>(kRounds));
  EXPECT_EQ(monitor->mountedImages().size(), 5u);
}

}  // namespace
}  // namespace quillmont::testing
