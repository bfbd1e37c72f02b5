#include "platform/posix/ThreadQueue.h"

#include <gtest/gtest.h>
#include <signal.h>

#include <algorithm>
#include <atomic>
#include <future>
#include <string>
#include <thread>
#include <vector>

namespace quillmont {
namespace {

constexpr BackgroundThread kPlain = {[](const std::string&) {},
                                     [](Task&& task) { Task(std::move(task))(); }};

void finish(SerialQueue& queue) {
  std::promise<void> done;
  queue.async([&] { done.set_value(); });
  done.get_future().wait();
}

TEST(ThreadQueue, RunsTasksInTheOrderOfTheCalls) {
  ThreadQueue queue("test", kPlain);
  std::vector<int> order;
  for (int task = 0; task < 100; ++task) queue.async([&order, task] { order.push_back(task); });
  finish(queue);
  EXPECT_EQ(order.size(), 100u);
  EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST(ThreadQueue, TasksOfManyProducersNeverOverlap) {
  ThreadQueue queue("test", kPlain);
  constexpr int kThreads = 4, kTasks = 500;
  int count = 0;  // unguarded on purpose: the queue is what guards it
  std::atomic<int> running = 0;
  std::atomic<bool> overlapped = false;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&] {
      for (int task = 0; task < kTasks; ++task) {
        queue.async([&] {
          if (++running != 1) overlapped = true;
          ++count;
          --running;
        });
      }
    });
  }
  for (auto& thread : threads) thread.join();
  finish(queue);
  EXPECT_EQ(count, kThreads * kTasks);
  EXPECT_FALSE(overlapped);
}

TEST(ThreadQueue, ATaskMayPostTheNextOne) {
  ThreadQueue queue("test", kPlain);
  std::promise<int> last;
  queue.async([&] { queue.async([&] { last.set_value(2); }); });
  EXPECT_EQ(last.get_future().get(), 2);
}

TEST(ThreadQueue, DestructionLetsTheRunningTaskEndAndDropsTheRest) {
  struct AtEnd {
    std::promise<void>& promise;
    explicit AtEnd(std::promise<void>& target) : promise(target) {}
    ~AtEnd() { promise.set_value(); }
  };
  std::promise<void> begun, dropped;
  std::atomic<bool> ended = false, another = false;
  auto* queue = new ThreadQueue("test", kPlain);
  queue->async([&] {
    begun.set_value();
    dropped.get_future().wait();
    queue->async([&] { another = true; });
    ended = true;
  });
  queue->async([&, atEnd = std::make_shared<AtEnd>(dropped)] { another = true; });
  begun.get_future().wait();
  delete queue;
  EXPECT_TRUE(ended);
  EXPECT_FALSE(another);
}

TEST(ThreadQueue, IsDestroyedOnItsOwnThread) {
  auto queue = std::make_unique<ThreadQueue>("test", kPlain);
  auto& reference = *queue;
  std::promise<void> posted, destroyed;
  std::atomic<bool> another = false;
  auto left = std::make_shared<std::promise<void>>();  // its end shows that the thread goes on
  auto gone = left->get_future();
  reference.async([&, left = std::move(left), owned = std::shared_ptr(std::move(queue))]() mutable {
    posted.get_future().wait();
    owned.reset();
    destroyed.set_value();
  });
  reference.async([&] { another = true; });
  posted.set_value();
  destroyed.get_future().wait();
  EXPECT_THROW(gone.get(), std::future_error);  // the promise was dropped with the task
  EXPECT_FALSE(another);
}

TEST(ThreadQueue, ItsThreadBeginsAndRunsTasksAsTheHostSays) {
  static std::string story;
  story.clear();
  const BackgroundThread told = {[](const std::string& label) { story = "begin " + label; },
                                 [](Task&& task) {
                                   story += ", (";
                                   Task(std::move(task))();
                                   story += ")";
                                 }};
  ThreadQueues queues(told);
  auto queue = queues.makeBackgroundQueue("com.example.test");
  queue->async([] { story += "one"; });
  finish(*queue);
  queue.reset();
  EXPECT_EQ(story, "begin com.example.test, (one), ()");
}

TEST(ThreadQueue, ItsThreadTakesNoSignal) {
  ThreadQueue queue("test", kPlain);
  sigset_t blocked;
  sigemptyset(&blocked);
  queue.async([&] { pthread_sigmask(SIG_SETMASK, nullptr, &blocked); });
  finish(queue);
  for (const int number : {SIGTERM, SIGINT, SIGHUP, SIGCHLD, SIGUSR1}) {
    EXPECT_EQ(sigismember(&blocked, number), 1) << number;
  }
  pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
  EXPECT_EQ(sigismember(&blocked, SIGTERM), 0);
}

TEST(ThreadQueues, MakesQueuesThatWorkBesideEachOther) {
  ThreadQueues queues(kPlain);
  const auto one = queues.makeBackgroundQueue("one");
  const auto two = queues.makeBackgroundQueue("two");
  std::promise<void> reply;
  one->async([&] { reply.get_future().wait(); });
  two->async([&] { reply.set_value(); });
  finish(*one);
}

}  // namespace
}  // namespace quillmont
