#include "platform/linux/ThreadQueue.h"

#include <errno.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <utility>

namespace quillmont {
namespace {

constexpr int kBackgroundNice = 10;
constexpr std::size_t kThreadNameLength = 15;

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

/// On Linux a thread has a nice value of its own.
void becomeBackgroundThread(const std::string& label) {
  const auto name = label.substr(label.rfind('.') + 1).substr(0, kThreadNameLength);
  prctl(PR_SET_NAME, name.c_str());
  errno = 0;
  const int nice = getpriority(PRIO_PROCESS, 0);
  if (errno == 0 && nice < kBackgroundNice) setpriority(PRIO_PROCESS, 0, kBackgroundNice);
}

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

ThreadQueue::ThreadQueue(const std::string& label) : state_(std::make_shared<State>()) {
  const SignalsBlocked blocked;
  thread_ = std::thread([state = state_, label] { work(state, label); });
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

void ThreadQueue::work(const std::shared_ptr<State>& state, const std::string& label) {
  becomeBackgroundThread(label);
  while (auto task = state->take()) (*task)();
}

std::unique_ptr<SerialQueue> ThreadQueues::makeBackgroundQueue(const std::string& label) {
  return std::make_unique<ThreadQueue>(label);
}

}  // namespace quillmont
