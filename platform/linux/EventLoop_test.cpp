#include "platform/linux/EventLoop.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <time.h>

#include <algorithm>
#include <limits>
#include <string>
#include <thread>
#include <vector>

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

TEST(EventLoop, RunsTasksInTheOrderOfTheCalls) {
  EventLoop loop;
  std::string order;
  for (const char name : {'a', 'b', 'c'}) loop.async([&order, name] { order += name; });
  loop.async([&] { loop.stop(); });
  loop.run();
  EXPECT_EQ(order, "abc");
}

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

TEST(EventLoop, TakesTasksFromManyThreads) {
  EventLoop loop;
  constexpr int kThreads = 4, kTasks = 500;
  int count = 0;
  std::vector<std::vector<int>> seen(kThreads);
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread] {
      for (int task = 0; task < kTasks; ++task) {
        loop.async([&, thread, task] {
          seen[static_cast<std::size_t>(thread)].push_back(task);
          if (++count == kThreads * kTasks) loop.stop();
        });
      }
    });
  }
  loop.run();
  for (auto& thread : threads) thread.join();
  for (const auto& tasks : seen) {
    ASSERT_EQ(tasks.size(), static_cast<std::size_t>(kTasks));
    EXPECT_TRUE(std::is_sorted(tasks.begin(), tasks.end()));
  }
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

TEST(EventLoop, ATaskMayPostFromItsDestructor) {
  EventLoop loop;
  bool ran = false;
  struct Poster {
    EventLoop& loop;
    bool& ran;
    Poster(EventLoop& target, bool& flag) : loop(target), ran(flag) {}
    ~Poster() {
      loop.async([&ran = ran] { ran = true; });
    }
  };
  loop.async([poster = std::make_shared<Poster>(loop, ran)] {});
  loop.dispatchPending();
  loop.dispatchPending();
  EXPECT_TRUE(ran);
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

TEST(EventLoop, ATimerFiresAgainAndAgain) {
  EventLoop loop;
  int firings = 0;
  const auto timer = loop.scheduleRepeatingTimer(0.001, [&] {
    if (++firings == 3) loop.stop();
  });
  loop.run();
  EXPECT_EQ(firings, 3);
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

TEST(EventLoop, ATimerIsInvalidatedByItsOwnTask) {
  EventLoop loop;
  int firings = 0;
  std::unique_ptr<Timer> timer;
  timer = loop.scheduleRepeatingTimer(0.001, [&] {
    ++firings;
    timer->invalidate();
    timer->invalidate();
  });
  ASSERT_TRUE(readable(loop, 1000));
  loop.dispatchPending();
  EXPECT_FALSE(readable(loop, 5));
  EXPECT_EQ(firings, 1);
}

TEST(EventLoop, ATimerIsDestroyedByItsOwnTask) {
  EventLoop loop;
  std::unique_ptr<Timer> timer;
  std::string text;
  timer = loop.scheduleRepeatingTimer(0.001, [&, held = std::string("what the task holds lives")] {
    timer.reset();
    text = held;
  });
  ASSERT_TRUE(readable(loop, 1000));
  loop.dispatchPending();
  EXPECT_EQ(text, "what the task holds lives");
  EXPECT_FALSE(readable(loop, 5));
}

TEST(EventLoop, ATimerInvalidatesAnotherOneThatIsDueToo) {
  EventLoop loop;
  std::unique_ptr<Timer> first, second;
  int firings = 0;
  first = loop.scheduleRepeatingTimer(0.001, [&] { ++firings, second.reset(); });
  second = loop.scheduleRepeatingTimer(0.001, [&] { ++firings, first.reset(); });
  pause(4);
  for (int turn = 0; turn < 3; ++turn) loop.dispatchPending();
  EXPECT_GE(firings, 1);
  EXPECT_NE(first == nullptr, second == nullptr);
}

TEST(EventLoop, ATimerDoesNotFireWhileItsTaskIsUnderWay) {
  EventLoop loop;
  int depth = 0, firings = 0;
  const auto timer = loop.scheduleRepeatingTimer(0.001, [&] {
    EXPECT_EQ(++depth, 1);
    pause(4);
    loop.dispatchPending();
    --depth;
    if (++firings == 2) loop.stop();
  });
  loop.run();
  EXPECT_EQ(firings, 2);
}

TEST(EventLoop, IntervalsOfNonsenseAreBounded) {
  EventLoop loop;
  using Limits = std::numeric_limits<double>;
  for (const double interval : {0.0, -1.0, Limits::quiet_NaN(), Limits::min()}) {
    int firings = 0;
    const auto timer = loop.scheduleRepeatingTimer(interval, [&] { ++firings; });
    EXPECT_TRUE(readable(loop, 1000));
    loop.dispatchPending();
    EXPECT_GE(firings, 1);
  }
  const auto never = loop.scheduleRepeatingTimer(Limits::infinity(), [] { FAIL(); });
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
}  // namespace quillmont
