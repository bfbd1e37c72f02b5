#include "platform/linux/start_room.h"

#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <mutex>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "platform/linux/StderrLog.h"

namespace quillmont {
namespace {

std::terminate_handler handlerOfOtherErrors = nullptr;

[[noreturn]] void endProcess() {
  if (const auto error = std::current_exception()) {
    try {
      std::rethrow_exception(error);
    } catch (const std::system_error& failure) {
      StderrLog().write(std::string("Quillmont cannot go on: ") + failure.what());
      _exit(EXIT_FAILURE);
    } catch (...) {
    }
  }
  handlerOfOtherErrors();
  std::abort();
}

/// Threads that wait for one another's start, and end together.
class WaitingThreads {
 public:
  ~WaitingThreads() {
    closed_.unlock();
    for (auto& thread : threads_) thread.join();
  }
  WaitingThreads() = default;
  WaitingThreads(const WaitingThreads&) = delete;
  WaitingThreads& operator=(const WaitingThreads&) = delete;

  void add() {
    threads_.emplace_back([this] { const std::lock_guard passing(gate_); });
  }

 private:
  std::mutex gate_;
  std::unique_lock<std::mutex> closed_{gate_};
  std::vector<std::thread> threads_;
};

}  // namespace

void endWithALogLineWithoutRoom() {
  const auto before = std::set_terminate(endProcess);
  if (before != endProcess) handlerOfOtherErrors = before;
}

void requireThreads(int count) {
  WaitingThreads threads;
  for (; count > 0; --count) threads.add();
}

}  // namespace quillmont
