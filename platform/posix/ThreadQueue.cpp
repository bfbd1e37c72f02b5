#include "platform/posix/ThreadQueue.h"

#include <signal.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <utility>

namespace quillmont {
namespace {

/// Blocks every signal of the calling thread while it lives; a thread started meanwhile inherits
/// the mask, so that no signal can reach it between its start and a call of its own.
class SignalsBlocked {
 public:
  SignalsBlocked() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  SignalsBlocked(const SignalsBlocked&) = delete;
  SignalsBlocked& operator=(const SignalsBlocked&) = delete;

 private:
  sigset_t before_;
};

}  // namespace

struct ThreadQueue::State {
  std::mutex lock;
  std::condition_variable changed;
  std::deque<Task> tasks;
  bool ended = false;

  std::optional<Task> take() {
    std::unique_lock guard(lock);
    changed.wait(guard, [this] { return ended || !tasks.empty(); });
    if (ended) return std::nullopt;
    std::optional<Task> task(std::move(tasks.front()));
    tasks.pop_front();
    return task;
  }
};

ThreadQueue::ThreadQueue(const std::string& label, const BackgroundThread& thread)
    : state_(std::make_shared<State>()) {
  const SignalsBlocked blocked;
  thread_ = std::thread([state = state_, label, thread] {
    thread.begin(label);
    work(state, thread);
  });
}

ThreadQueue::~ThreadQueue() {
  std::deque<Task> dropped;
  {
    const std::lock_guard guard(state_->lock);
    state_->ended = true;
    dropped.swap(state_->tasks);
  }
  dropped.clear();  // outside the lock: what tasks hold may call anything when it goes
  state_->changed.notify_one();
  if (thread_.get_id() == std::this_thread::get_id()) {
    thread_.detach();
  } else {
    thread_.join();
  }
}

void ThreadQueue::async(Task task) {
  {
    const std::lock_guard guard(state_->lock);
    if (state_->ended) return;
    state_->tasks.push_back(std::move(task));
  }
  state_->changed.notify_one();
}

void ThreadQueue::work(const std::shared_ptr<State>& state, const BackgroundThread& thread) {
  while (auto task = state->take()) thread.run(std::move(*task));
}

std::unique_ptr<SerialQueue> ThreadQueues::makeBackgroundQueue(const std::string& label) {
  return std::make_unique<ThreadQueue>(label, thread_);
}

}  // namespace quillmont
