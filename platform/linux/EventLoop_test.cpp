#include "platform/linux/EventLoop.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <time.h>

#include <string>
#include <thread>

#include "tests/support/Program.h"
#include "tests/support/RunLoopContract.h"
#include "tests/support/forked.h"

namespace quillmont {
namespace {

bool readable(const EventLoop& loop, int milliseconds = 0) {
  pollfd wanted = {loop.descriptor(), POLLIN, 0};
  return poll(&wanted, 1, milliseconds) == 1;
}

void pause(long milliseconds) {
  const timespec time = {0, milliseconds * 1'000'000};
  nanosleep(&time, nullptr);
}

/// A descriptor that is readable while it holds a number.
Descriptor readyDescriptor() {
  return Descriptor(eventfd(1, EFD_CLOEXEC | EFD_NONBLOCK));
}

struct EventLoopKit {
  RunLoop& loop() { return eventLoop; }
  void serveReady() { eventLoop.dispatchPending(); }
  bool serveUntil(const std::function<bool()>& reached) {
    const auto served = [&] {
      if (readable(eventLoop, 20)) eventLoop.dispatchPending();
      return reached();
    };
    return reached() || testing::eventually(served, std::chrono::seconds(20));
  }
  EventLoop eventLoop;
};

TEST(EventLoop, LeavesATaskPostedByATaskToTheNextTurn) {
  EventLoop loop;
  std::string order;
  loop.async([&] {
    order += 'a';
    loop.async([&] { order += 'c'; });
  });
  loop.async([&] { order += 'b'; });
  loop.dispatchPending();
  EXPECT_EQ(order, "ab");
  EXPECT_TRUE(readable(loop));
  loop.dispatchPending();
  EXPECT_EQ(order, "abc");
  EXPECT_FALSE(readable(loop));
}

TEST(EventLoop, ServesOthersBetweenTheTurnsOfATaskThatPostsItselfForEver) {
  EventLoop loop;
  std::function<void()> again = [&] { loop.async(again); };
  again();
  const auto ready = readyDescriptor();
  const auto watch = loop.watch(ready.get(), EPOLLIN, [&](std::uint32_t) { loop.stop(); });
  loop.run();
}

TEST(EventLoop, IsStoppedByAnotherThread) {
  EventLoop loop;
  std::thread other([&] { loop.stop(); });
  loop.run();
  other.join();
}

TEST(EventLoop, ReturnsAtOnceWhenItWasStoppedBefore) {
  EventLoop loop;
  bool ran = false;
  loop.async([&] { ran = true; });
  loop.stop();
  loop.run();
  loop.dispatchPending();
  EXPECT_FALSE(ran);
}

TEST(EventLoop, ServesNothingBehindTheTaskThatStopsIt) {
  EventLoop loop;
  std::string order;
  loop.async([&] {
    order += 'a';
    loop.stop();
  });
  loop.async([&] { order += 'b'; });
  loop.run();
  EXPECT_EQ(order, "a");
}

TEST(EventLoop, RunsTheRestOfTheTasksOnceWhenATaskDispatchesItself) {
  EventLoop loop;
  std::string order;
  loop.async([&] {
    order += '(';
    EXPECT_TRUE(readable(loop));
    loop.dispatchPending();
    EXPECT_FALSE(readable(loop));
    order += ')';
  });
  loop.async([&] { order += 'a'; });
  loop.async([&] { order += 'b'; });
  loop.dispatchPending();
  loop.dispatchPending();
  EXPECT_EQ(order, "(ab)");
}

TEST(EventLoop, ATimerDoesNotMakeUpForMissedFirings) {
  EventLoop loop;
  int firings = 0;
  const auto timer = loop.scheduleRepeatingTimer(0.001, [&] { ++firings; });
  pause(8);
  loop.dispatchPending();
  // A second one may just have become due, the six before it not.
  EXPECT_GE(firings, 1);
  EXPECT_LE(firings, 2);
}

TEST(EventLoop, ATimerDoesNotFireBeforeItsTime) {
  EventLoop loop;
  const auto timer = loop.scheduleRepeatingTimer(3600, [] { FAIL(); });
  loop.dispatchPending();
  EXPECT_FALSE(readable(loop));
}

TEST(EventLoop, AWatchReportsReadinessUntilItIsRemoved) {
  EventLoop loop;
  const auto ready = readyDescriptor();
  int calls = 0;
  auto watch = loop.watch(ready.get(), EPOLLIN, [&](std::uint32_t events) {
    EXPECT_EQ(events, static_cast<std::uint32_t>(EPOLLIN));
    eventfd_t ignored;
    eventfd_read(ready.get(), &ignored);
    ++calls;
  });
  loop.dispatchPending();
  loop.dispatchPending();
  EXPECT_EQ(calls, 1);
  eventfd_write(ready.get(), 1);
  watch.reset();
  loop.dispatchPending();
  EXPECT_EQ(calls, 1);
}

TEST(EventLoop, AWatchRemovesItself) {
  EventLoop loop;
  const auto ready = readyDescriptor();
  int calls = 0;
  EventLoop::Watch watch;
  watch = loop.watch(ready.get(), EPOLLIN, [&](std::uint32_t) {
    watch.reset();
    ++calls;
  });
  loop.dispatchPending();
  loop.dispatchPending();
  EXPECT_EQ(calls, 1);
}

TEST(EventLoop, OneOfTwoReadyWatchesRemovesTheOther) {
  EventLoop loop;
  const auto one = readyDescriptor(), two = readyDescriptor();
  int calls = 0;
  EventLoop::Watch watches[2];
  watches[0] = loop.watch(one.get(), EPOLLIN, [&](std::uint32_t) {
    ++calls;
    for (auto& watch : watches) watch.reset();
  });
  watches[1] = loop.watch(two.get(), EPOLLIN, [&](std::uint32_t) {
    ++calls;
    for (auto& watch : watches) watch.reset();
  });
  loop.dispatchPending();
  EXPECT_EQ(calls, 1);
}

TEST(EventLoop, AnnouncementsOfAFileThatIsNotThereAreAnError) {
  EventLoop loop;
  const auto watch = loop.watchAnnouncements("/proc/no-such-file", [] {});
  ASSERT_FALSE(watch);
  EXPECT_EQ(watch.errorText(), "cannot open /proc/no-such-file: No such file or directory");
}

TEST(EventLoop, TellsAnAnnouncementThatAToolkitsPollHasUsedUp) {
  if (!testing::canMount()) GTEST_SKIP() << "no mount table of its own may be had here";
  EXPECT_EQ(testing::forked([] {
              ASSERT_TRUE(testing::enterOwnMountTable());
              EventLoop loop;
              int calls = 0;
              const auto watch = loop.watchAnnouncements("/proc/self/mountinfo", [&] { ++calls; });
              ASSERT_TRUE(watch);
              EXPECT_FALSE(readable(loop));
              for (int round = 1; round <= 3; ++round) {
                ASSERT_EQ(mount("none", "/mnt", "tmpfs", 0, nullptr), 0);
                EXPECT_TRUE(readable(loop, 1000));
                loop.dispatchPending();
                EXPECT_EQ(calls, round);
                loop.dispatchPending();
                EXPECT_EQ(calls, round);
                EXPECT_FALSE(readable(loop));
              }
            }),
            0);
}

TEST(EventLoop, TellsAnAnnouncementWhileItRuns) {
  if (!testing::canMount()) GTEST_SKIP() << "no mount table of its own may be had here";
  EXPECT_EQ(testing::forked([] {
              ASSERT_TRUE(testing::enterOwnMountTable());
              EventLoop loop;
              int calls = 0;
              const auto watch = loop.watchAnnouncements("/proc/self/mountinfo", [&] {
                ++calls;
                loop.async([&] { loop.stop(); });
              });
              loop.async([] { ASSERT_EQ(mount("none", "/mnt", "tmpfs", 0, nullptr), 0); });
              loop.run();
              EXPECT_EQ(calls, 1);
            }),
            0);
}

}  // namespace

namespace testing {
INSTANTIATE_TYPED_TEST_SUITE_P(EventLoop, RunLoopContract, EventLoopKit);
}  // namespace testing

}  // namespace quillmont
