// Tests that change what belongs to a whole process: signals, environment, mounts.
#pragma once

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

namespace quillmont::testing {

/// Runs `body` in a child process, whose failed expectations are printed as they come, and returns
/// its exit status: 0 if all held, 1 if not, 128 plus the signal that ended it. A child that takes
/// longer than 20 s is ended.
template <class Body>
int forked(Body body) {
  std::fflush(nullptr);
  const pid_t pid = fork();
  if (pid == 0) {
    alarm(20);
    body();
    std::fflush(nullptr);
    _exit(::testing::Test::HasFailure() ? 1 : 0);
  }
  int status = 0;
  if (pid < 0 || waitpid(pid, &status, 0) != pid) return -1;
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

/// Gives the calling process a mount table of its own, from which nothing gets out. False where the
/// machine does not allow it.
inline bool enterOwnMountTable() {
  return unshare(CLONE_NEWNS) == 0 &&
         mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

/// Whether enterOwnMountTable() will work, for tests to skip themselves.
inline bool canMount() {
  return forked([] { _exit(enterOwnMountTable() ? 0 : 1); }) == 0;
}

}  // namespace quillmont::testing
