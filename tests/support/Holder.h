// A process that holds something open for as long as a test wants.
#pragma once

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <stdexcept>

#include "platform/posix/Descriptor.h"

namespace quillmont::testing {

/// A copy of the test process; killed on destruction, and when the test itself ends.
class Holder {
 public:
  /// Runs `take` in the new process, which then rests. `take` answers whether it holds what it was
  /// to hold; returns once it does, throws if it does not.
  template <class Take>
  explicit Holder(Take take) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("pipe2 failed");
    const Descriptor read(ends[0]);
    Descriptor write(ends[1]);
    std::fflush(nullptr);
    pid_ = fork();
    if (pid_ == 0) {
      prctl(PR_SET_PDEATHSIG, SIGKILL);
      if (!take() || ::write(write.get(), "!", 1) != 1) _exit(1);
      for (;;) pause();
    }
    write.reset();
    char mark = 0;
    if (pid_ < 0 || ::read(read.get(), &mark, 1) != 1) throw std::runtime_error("nothing is held");
  }

  ~Holder() {
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
  }
  Holder(const Holder&) = delete;
  Holder& operator=(const Holder&) = delete;

  pid_t pid() const { return pid_; }

 private:
  pid_t pid_ = -1;
};

}  // namespace quillmont::testing
