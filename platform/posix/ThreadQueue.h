// Serial queues, each one thread of background priority.
#pragma once

#include <memory>
#include <string>
#include <thread>

#include "platform/SerialQueue.h"

namespace quillmont {

/// What a host does on a thread that works in the background.
struct BackgroundThread {
  /// The first thing on it: names it after `label` for debuggers, and lets it yield to others.
  void (*begin)(const std::string& label);

  /// Runs a task and lets go of what it holds, within whatever the host wants around that.
  void (*run)(Task&& task);
};

/// The thread starts with the queue and blocks every signal. Throws std::system_error when the
/// system has no thread left.
class ThreadQueue : public SerialQueue {
 public:
  ThreadQueue(const std::string& label, const BackgroundThread& thread);
  ~ThreadQueue() override;
  ThreadQueue(const ThreadQueue&) = delete;
  ThreadQueue& operator=(const ThreadQueue&) = delete;

  void async(Task task) override;

 private:
  struct State;
  static void work(const std::shared_ptr<State>& state, const BackgroundThread& thread);

  std::shared_ptr<State> state_;  ///< the thread's too, which may outlive the queue
  std::thread thread_;
};

class ThreadQueues : public SerialQueues {
 public:
  explicit ThreadQueues(const BackgroundThread& thread) : thread_(thread) {}

  std::unique_ptr<SerialQueue> makeBackgroundQueue(const std::string& label) override;

 private:
  const BackgroundThread thread_;
};

}  // namespace quillmont
