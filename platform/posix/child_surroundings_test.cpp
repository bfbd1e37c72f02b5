// What a child finds when it starts: its streams, arguments, variables and signals, and nothing
// else of the program's.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <sstream>

#include "platform/posix/Descriptor.h"
#include "platform/posix/PosixProcessLauncherTest.h"

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using testing::PosixProcessLauncherTest;
using testing::shell;

/// Descriptors 0 to 2 closed while it lives, as for a program started by a careless parent.
class NoStandardStreams {
 public:
  NoStandardStreams() {
    for (int fd = 0; fd < 3; ++fd) {
      saved_[fd] = fcntl(fd, F_DUPFD_CLOEXEC, 10);
      close(fd);
    }
  }
  ~NoStandardStreams() {
    for (int fd = 0; fd < 3; ++fd) {
      if (saved_[fd] < 0) continue;
      dup2(saved_[fd], fd);
      close(saved_[fd]);
    }
  }
  NoStandardStreams(const NoStandardStreams&) = delete;
  NoStandardStreams& operator=(const NoStandardStreams&) = delete;

 private:
  int saved_[3];
};

TEST_F(PosixProcessLauncherTest, NoDescriptorButTheStandardStreamsReachesTheChild) {
  // Not close-on-exec, as one that the program itself inherited.
  const Descriptor stray(fcntl(STDOUT_FILENO, F_DUPFD, 40));
  ASSERT_TRUE(stray);
  const auto outcome = run({"/bin/ls", {"/dev/fd"}, ChildOutput::pipe, ChildOutput::pipe});
  std::istringstream names(outcome.output);
  int count = 0;
  for (int fd = 0; names >> fd; ++count) EXPECT_LE(fd, 3);  // 3 is the listing's own
  EXPECT_GE(count, 3);
}

TEST_F(PosixProcessLauncherTest, PipesWorkWhenTheProgramHasNoStandardStreams) {
  Outcome outcome;
  {
    const NoStandardStreams closed;
    outcome = run(shell({"echo out; echo err >&2; exit 8"}, ChildOutput::pipe, ChildOutput::pipe));
  }
  EXPECT_EQ(outcome.status, 8);
  EXPECT_EQ(outcome.output, "out\n");
}

TEST_F(PosixProcessLauncherTest, ArgumentsArriveExactly) {
  const std::vector<std::string> arguments = {
      "", " ", "a b", "\"'`", "$HOME", "line\nline", "\\", "-n", "*", "\u78c1\u76d8", "\xff\xfe"};
  auto command = shell({"printf '%s|' \"$@\"", "name"});
  command.arguments.insert(command.arguments.end(), arguments.begin(), arguments.end());
  std::string expected;
  for (const auto& argument : arguments) expected += argument + "|";
  EXPECT_EQ(run(command).output, expected);
}

TEST_F(PosixProcessLauncherTest, ChildrenGetTheGivenPathOnceAndTheOtherVariables) {
  ASSERT_EQ(setenv("QUILLMONT_TEST_VARIABLE", "kept", 1), 0);
  PosixProcessLauncher launcher("/one:/two");
  auto child = launcher.launch({"/usr/bin/env", {}, ChildOutput::pipe});
  unsetenv("QUILLMONT_TEST_VARIABLE");
  ASSERT_TRUE(child);
  EXPECT_EQ((*child)->waitUntilExit(), 0);
  const auto text = "\n" + (*child)->readStandardOutput();
  EXPECT_THAT(text, HasSubstr("\nPATH=/one:/two\n"));
  EXPECT_THAT(text, HasSubstr("\nQUILLMONT_TEST_VARIABLE=kept\n"));
  EXPECT_EQ(text.find("\nPATH="), text.rfind("\nPATH="));
}

TEST_F(PosixProcessLauncherTest, ChildStartsWithNoSignalBlockedOrIgnored) {
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  ASSERT_EQ(pthread_sigmask(SIG_BLOCK, &all, &before), 0);
  auto* pipeHandler = signal(SIGPIPE, SIG_IGN);
  auto* hangUpHandler = signal(SIGHUP, SIG_IGN);
  std::vector<int> statuses;
  for (const char* name : {"HUP", "PIPE", "USR1", "TERM"}) {
    statuses.push_back(run(shell({std::string("kill -") + name + " $$; exit 0"})).status);
  }
  const auto status = run({"/bin/cat", {"/proc/self/status"}, ChildOutput::pipe}).output;
  signal(SIGHUP, hangUpHandler);
  signal(SIGPIPE, pipeHandler);
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  EXPECT_THAT(statuses, ElementsAre(128 + SIGHUP, 128 + SIGPIPE, 128 + SIGUSR1, 128 + SIGTERM));
  if (access("/proc", F_OK) != 0) return;  // only there can all signals be seen
  EXPECT_THAT(status, HasSubstr("SigBlk:\t0000000000000000\n"));
  const auto ignored = status.find("SigIgn:\t");
  ASSERT_NE(ignored, std::string::npos);
  // The C library keeps signals 32 and 33 to itself and leaves them ignored in the child.
  constexpr unsigned long long kItsOwn = 3ull << 31;
  EXPECT_EQ(std::stoull(status.substr(ignored + 8), nullptr, 16) & ~kItsOwn, 0u);
}

TEST_F(PosixProcessLauncherTest, ChildIsInAProcessGroupOfItsOwn) {
  EXPECT_EQ(run(shell({"kill -0 -$$ && exit 7"})).status, 7) << "there is no such group";
}

}  // namespace
}  // namespace quillmont
