// Real programs in tests: started with their own environment, watched, and never left behind.
#pragma once

#include <sys/types.h>
#include <time.h>

#include <chrono>
#include <map>
#include <string>
#include <vector>

namespace quillmont::testing {

using Environment = std::map<std::string, std::string>;

/// The test's own environment with `changes` laid over it; an empty value removes a variable.
Environment environmentWith(const Environment& changes);

struct Outcome {
  int status = -1;  ///< exit status, or 128 plus the signal number
  std::string standardOutput;
  std::string standardError;
};

/// Runs `arguments` (the first one is the program, looked up on the PATH) to its end; killed, with
/// status 128 + 9, when it takes longer than `limit`.
Outcome run(const std::vector<std::string>& arguments, const Environment& environment = {},
            std::chrono::seconds limit = std::chrono::seconds(30));

/// A program that runs beside the test; killed and reaped on destruction.
class Program {
 public:
  /// Its two outputs are collected together, as they come. `user` 0 keeps the test's user,
  /// anything else is the user and group identifier to become.
  explicit Program(const std::vector<std::string>& arguments, const Environment& environment = {},
                   uid_t user = 0);
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  pid_t pid() const { return pid_; }

  /// Everything written so far.
  std::string output();

  /// Waits until the output contains `text`, `count` times; false after `limit`.
  bool waitForOutput(const std::string& text, std::chrono::milliseconds limit, int count = 1);

  bool running();
  void signal(int number);

  /// Waits for the end; the status as in Outcome, -1 after `limit`.
  int waitForExit(std::chrono::milliseconds limit);

 private:
  void collect(std::chrono::milliseconds atMost);

  pid_t pid_ = -1;
  int pipe_ = -1;
  int status_ = -1;
  std::string output_;
};

/// Asks `condition` every few milliseconds until it holds; false after `limit`.
template <class Condition>
bool eventually(Condition condition, std::chrono::milliseconds limit) {
  const auto end = std::chrono::steady_clock::now() + limit;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    struct timespec pause = {0, 5'000'000};
    nanosleep(&pause, nullptr);
  }
  return true;
}

/// A folder of the test's own, deleted with everything in it on destruction.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

}  // namespace quillmont::testing
