// Serial queues, each one thread of background priority.
#pragma once

#include <memory>
#include <string>
#include <thread>

#include "platform/SerialQueue.h"

namespace quillmont {

/// The thread starts with the queue. It blocks every signal, yields to others (nice 10, which the
/// programs that it starts inherit) and is named after the last part of `label`. Throws
/// std::system_error when the system has no thread left.
class ThreadQueue : public SerialQueue {
 public:
  explicit ThreadQueue(const std::string& label);
  ~ThreadQueue() override;
  ThreadQueue(const ThreadQueue&) = delete;
  ThreadQueue& operator=(const ThreadQueue&) = delete;

  void async(Task task) override;

 private:
  struct State;
  static void work(const std::shared_ptr<State>& state, const std::string& label);

  std::shared_ptr<State> state_;  ///< the thread's too, which may outlive the queue
  std::thread thread_;
};

class ThreadQueues : public SerialQueues {
 public:
  std::unique_ptr<SerialQueue> makeBackgroundQueue(const std::string& label) override;
};

}  // namespace quillmont
