// What every host's run loop promises. A host's test says how its loop is served:
//   struct Kit {
//     RunLoop& loop();
//     void serveReady();                              // what is ready now; does not wait
//     bool serveUntil(std::function<bool()> reached); // false if that takes too long
//   };
//   INSTANTIATE_TYPED_TEST_SUITE_P(Name, RunLoopContract, Kit);
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "platform/RunLoop.h"

namespace quillmont::testing {

template <class Kit>
class RunLoopContract : public ::testing::Test {
 protected:
  RunLoop& loop() { return kit.loop(); }

  Kit kit;
};

TYPED_TEST_SUITE_P(RunLoopContract);

TYPED_TEST_P(RunLoopContract, RunsTasksInTheOrderOfTheCalls) {
  std::string order;
  for (const char name : {'a', 'b', 'c', 'd'}) {
    this->loop().async([&order, name] { order += name; });
  }
  EXPECT_EQ(order, "");
  EXPECT_TRUE(this->kit.serveUntil([&] { return order.size() == 4; }));
  EXPECT_EQ(order, "abcd");
}

TYPED_TEST_P(RunLoopContract, RunsATaskPostedByATaskBehindThoseThatWaitAlready) {
  std::string order;
  this->loop().async([&] {
    order += 'a';
    this->loop().async([&] { order += 'c'; });
  });
  this->loop().async([&] { order += 'b'; });
  EXPECT_TRUE(this->kit.serveUntil([&] { return order.size() == 3; }));
  EXPECT_EQ(order, "abc");
}

TYPED_TEST_P(RunLoopContract, TakesTasksFromManyThreads) {
  constexpr int kThreads = 4, kTasks = 500;
  int count = 0;
  std::vector<std::vector<int>> seen(kThreads);
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread] {
      for (int task = 0; task < kTasks; ++task) {
        this->loop().async([&, thread, task] {
          seen[static_cast<std::size_t>(thread)].push_back(task);
          ++count;
        });
      }
    });
  }
  EXPECT_TRUE(this->kit.serveUntil([&] { return count == kThreads * kTasks; }));
  for (auto& thread : threads) thread.join();
  for (const auto& tasks : seen) {
    ASSERT_EQ(tasks.size(), static_cast<std::size_t>(kTasks));
    EXPECT_TRUE(std::is_sorted(tasks.begin(), tasks.end()));
  }
}

TYPED_TEST_P(RunLoopContract, ServesTimersBetweenTheTurnsOfATaskThatPostsItselfForEver) {
  bool fired = false;
  std::function<void()> again = [&] {
    if (!fired) this->loop().async(again);
  };
  again();
  const auto timer = this->loop().scheduleRepeatingTimer(0.001, [&] { fired = true; });
  EXPECT_TRUE(this->kit.serveUntil([&] { return fired; }));
}

TYPED_TEST_P(RunLoopContract, ATaskMayPostFromItsDestructor) {
  bool ran = false;
  struct Poster {
    RunLoop& loop;
    bool& ran;
    Poster(RunLoop& target, bool& flag) : loop(target), ran(flag) {}
    ~Poster() {
      loop.async([&ran = ran] { ran = true; });
    }
  };
  this->loop().async([poster = std::make_shared<Poster>(this->loop(), ran)] {});
  EXPECT_TRUE(this->kit.serveUntil([&] { return ran; }));
}

TYPED_TEST_P(RunLoopContract, RunsTheTasksBehindOneThatServesTheLoopItselfWithinItAndOnce) {
  std::string order;
  this->loop().async([&] {
    order += '(';
    EXPECT_TRUE(this->kit.serveUntil([&] { return order.ends_with('b'); }));
    order += ')';
  });
  this->loop().async([&] { order += 'a'; });
  this->loop().async([&] { order += 'b'; });
  EXPECT_TRUE(this->kit.serveUntil([&] { return order.ends_with(')'); }));
  this->kit.serveReady();
  EXPECT_EQ(order, "(ab)");
}

TYPED_TEST_P(RunLoopContract, ATimerFiresAgainAndAgain) {
  int firings = 0;
  const auto timer = this->loop().scheduleRepeatingTimer(0.001, [&] { ++firings; });
  EXPECT_TRUE(this->kit.serveUntil([&] { return firings >= 3; }));
}

TYPED_TEST_P(RunLoopContract, ATimerDoesNotFireBeforeItsTime) {
  bool served = false;
  const auto timer = this->loop().scheduleRepeatingTimer(3600, [] { FAIL(); });
  this->loop().async([&] { served = true; });
  EXPECT_TRUE(this->kit.serveUntil([&] { return served; }));
  this->kit.serveReady();
}

TYPED_TEST_P(RunLoopContract, ATimerDoesNotFireOnceItIsInvalidated) {
  int firings = 0, others = 0;
  const auto timer = this->loop().scheduleRepeatingTimer(0.001, [&] { ++firings; });
  timer->invalidate();
  timer->invalidate();
  const auto other = this->loop().scheduleRepeatingTimer(0.001, [&] { ++others; });
  EXPECT_TRUE(this->kit.serveUntil([&] { return others >= 3; }));
  EXPECT_EQ(firings, 0);
}

TYPED_TEST_P(RunLoopContract, ATimerIsInvalidatedByItsOwnTask) {
  int firings = 0, others = 0;
  std::unique_ptr<Timer> timer;
  timer = this->loop().scheduleRepeatingTimer(0.001, [&] {
    ++firings;
    timer->invalidate();
    timer->invalidate();
  });
  const auto other = this->loop().scheduleRepeatingTimer(0.001, [&] { ++others; });
  EXPECT_TRUE(this->kit.serveUntil([&] { return firings >= 1 && others >= 3; }));
  EXPECT_EQ(firings, 1);
}

TYPED_TEST_P(RunLoopContract, ATimerIsDestroyedByItsOwnTask) {
  int firings = 0, others = 0;
  std::unique_ptr<Timer> timer;
  std::string text;
  timer = this->loop().scheduleRepeatingTimer(0.001,
                                              [&, held = std::string("what the task holds lives")] {
                                                timer.reset();
                                                text = held;
                                                ++firings;
                                              });
  const auto other = this->loop().scheduleRepeatingTimer(0.001, [&] { ++others; });
  EXPECT_TRUE(this->kit.serveUntil([&] { return firings >= 1 && others >= 3; }));
  EXPECT_EQ(text, "what the task holds lives");
  EXPECT_EQ(firings, 1);
}

TYPED_TEST_P(RunLoopContract, ATimerInvalidatesAnotherOneThatIsDueToo) {
  std::unique_ptr<Timer> first, second;
  int firings = 0, others = 0;
  first = this->loop().scheduleRepeatingTimer(0.001, [&] { ++firings, second.reset(); });
  second = this->loop().scheduleRepeatingTimer(0.001, [&] { ++firings, first.reset(); });
  const auto other = this->loop().scheduleRepeatingTimer(0.001, [&] { ++others; });
  EXPECT_TRUE(this->kit.serveUntil([&] { return firings >= 1 && others >= 3; }));
  EXPECT_NE(first == nullptr, second == nullptr);
}

TYPED_TEST_P(RunLoopContract, ATimerDoesNotFireWhileItsTaskIsUnderWay) {
  int depth = 0, firings = 0, others = 0;
  const auto other = this->loop().scheduleRepeatingTimer(0.001, [&] { ++others; });
  const auto timer = this->loop().scheduleRepeatingTimer(0.001, [&] {
    EXPECT_EQ(++depth, 1);
    const int until = others + 3;
    EXPECT_TRUE(this->kit.serveUntil([&] { return others >= until; }));
    --depth;
    ++firings;
  });
  EXPECT_TRUE(this->kit.serveUntil([&] { return firings >= 2; }));
}

TYPED_TEST_P(RunLoopContract, WhatATimersTaskHoldsGoesWithTheTimer) {
  const auto held = std::make_shared<int>(0);
  auto timer = this->loop().scheduleRepeatingTimer(3600, [held] {});
  EXPECT_EQ(held.use_count(), 2);
  timer.reset();
  this->kit.serveReady();
  EXPECT_EQ(held.use_count(), 1);
}

TYPED_TEST_P(RunLoopContract, IntervalsOfNonsenseAreBounded) {
  using Limits = std::numeric_limits<double>;
  for (const double interval : {0.0, -1.0, Limits::quiet_NaN(), Limits::min()}) {
    int firings = 0;
    const auto timer = this->loop().scheduleRepeatingTimer(interval, [&] { ++firings; });
    EXPECT_TRUE(this->kit.serveUntil([&] { return firings >= 1; })) << interval;
  }
  const auto never = this->loop().scheduleRepeatingTimer(Limits::infinity(), [] { FAIL(); });
  this->kit.serveReady();
}

REGISTER_TYPED_TEST_SUITE_P(RunLoopContract, RunsTasksInTheOrderOfTheCalls,
                            RunsATaskPostedByATaskBehindThoseThatWaitAlready,
                            TakesTasksFromManyThreads,
                            ServesTimersBetweenTheTurnsOfATaskThatPostsItselfForEver,
                            ATaskMayPostFromItsDestructor,
                            RunsTheTasksBehindOneThatServesTheLoopItselfWithinItAndOnce,
                            ATimerFiresAgainAndAgain, ATimerDoesNotFireBeforeItsTime,
                            ATimerDoesNotFireOnceItIsInvalidated, ATimerIsInvalidatedByItsOwnTask,
                            ATimerIsDestroyedByItsOwnTask, ATimerInvalidatesAnotherOneThatIsDueToo,
                            ATimerDoesNotFireWhileItsTaskIsUnderWay,
                            WhatATimersTaskHoldsGoesWithTheTimer, IntervalsOfNonsenseAreBounded);

}  // namespace quillmont::testing
