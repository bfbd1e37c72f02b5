#include "platform/posix/PosixProcessLauncher.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <sstream>
#include <thread>

#include "platform/posix/Descriptor.h"
#include "platform/posix/files.h"
#include "tests/support/Program.h"

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using testing::eventually;
using ::testing::HasSubstr;
using testing::TemporaryFolder;

Command shell(std::vector<std::string> arguments, ChildOutput output = ChildOutput::pipe,
              ChildOutput error = ChildOutput::inherit) {
  arguments.insert(arguments.begin(), "-c");
  return {"/bin/sh", std::move(arguments), output, error};
}

struct Outcome {
  int status = -1;
  std::string output;
};

class PosixProcessLauncherTest : public ::testing::Test {
 protected:
  Outcome run(const Command& command) {
    auto child = launcher_.launch(command);
    EXPECT_TRUE(child) << (child ? "" : child.errorText());
    if (!child) return {};
    const int status = (*child)->waitUntilExit();
    return {status, (*child)->readStandardOutput()};
  }

  PosixProcessLauncher launcher_{"/usr/bin:/bin"};
};

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

TEST_F(PosixProcessLauncherTest, MuchOutputOnBothStreamsAtOnceArrivesWhole) {
  for (const std::size_t size : {std::size_t{1'000'000}, std::size_t{20'000'000}}) {
    const auto script = "head -c " + std::to_string(size) + " /dev/zero >&2 & head -c " +
                        std::to_string(size) + " /dev/zero; wait; echo end";
    const auto outcome = run(shell({script}, ChildOutput::pipe, ChildOutput::pipe));
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output.size(), size + 4);
    EXPECT_TRUE(outcome.output.ends_with("end\n"));
  }
}

TEST_F(PosixProcessLauncherTest, OfAFloodOnlyTheBeginningIsKeptAndTheChildStillEnds) {
  PosixProcessLauncher launcher("/usr/bin:/bin", /*outputLimit=*/100'000);
  auto child =
      launcher.launch(shell({"echo start; head -c 5000000 /dev/zero; exit 6"}, ChildOutput::pipe));
  ASSERT_TRUE(child);
  EXPECT_EQ((*child)->waitUntilExit(), 6);
  EXPECT_EQ((*child)->readStandardOutput().size(), 100'000u);
  EXPECT_TRUE((*child)->readStandardOutput().starts_with("start\n"));
}

TEST_F(PosixProcessLauncherTest, OutputOfExactlyTheLimitIsWhole) {
  PosixProcessLauncher launcher("/usr/bin:/bin", /*outputLimit=*/6);
  auto child = launcher.launch(shell({"echo 12345"}));
  ASSERT_TRUE(child);
  EXPECT_EQ((*child)->waitUntilExit(), 0);
  EXPECT_EQ((*child)->readStandardOutput(), "12345\n");
}

TEST_F(PosixProcessLauncherTest, FloodOnStandardErrorTakesNoMemory) {
  rusage before = {};
  rusage after = {};
  ASSERT_EQ(getrusage(RUSAGE_SELF, &before), 0);
  const auto outcome =
      run(shell({"head -c 100000000 /dev/zero >&2"}, ChildOutput::pipe, ChildOutput::pipe));
  ASSERT_EQ(getrusage(RUSAGE_SELF, &after), 0);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_LT(after.ru_maxrss, 2 * before.ru_maxrss);  // one system counts KiB, another bytes
}

TEST_F(PosixProcessLauncherTest, PipedStandardErrorIsDroppedAndKeptApart) {
  const auto outcome = run(shell({"echo no >&2; echo yes"}, ChildOutput::pipe, ChildOutput::pipe));
  EXPECT_EQ(outcome.output, "yes\n");
}

TEST_F(PosixProcessLauncherTest, MissingProgramIsAnErrorWithTheSystemsReason) {
  EXPECT_EQ(launcher_.launch({"/no/such/program", {}}).errorText(), "No such file or directory");
}

TEST_F(PosixProcessLauncherTest, FolderAndPlainFileAsProgramsAreErrors) {
  EXPECT_EQ(launcher_.launch({"/", {}}).errorText(), "Permission denied");
  const TemporaryFolder folder;
  ASSERT_TRUE(replaceFile(folder.path() + "/plain", "#!/bin/sh\n"));
  EXPECT_EQ(launcher_.launch({folder.path() + "/plain", {}}).errorText(), "Permission denied");
}

TEST_F(PosixProcessLauncherTest, NulInAnArgumentIsRefused) {
  EXPECT_EQ(launcher_.launch({"/bin/echo", {std::string("a\0b", 3)}}).errorText(),
            "Invalid argument");
}

TEST_F(PosixProcessLauncherTest, ExitStatusesArrive) {
  for (const int status : {0, 1, 7, 127, 255}) {
    EXPECT_EQ(run(shell({"exit " + std::to_string(status)})).status, status);
  }
}

TEST_F(PosixProcessLauncherTest, DeathBySignalIs128PlusItsNumber) {
  EXPECT_EQ(run(shell({"kill -KILL $$"})).status, 128 + SIGKILL);
  EXPECT_EQ(run(shell({"kill -TERM $$"}, ChildOutput::inherit)).status, 128 + SIGTERM);
}

TEST_F(PosixProcessLauncherTest, WaitingAgainReturnsTheSameStatus) {
  auto child = launcher_.launch(shell({"echo once; exit 3"}));
  ASSERT_TRUE(child);
  EXPECT_EQ((*child)->waitUntilExit(), 3);
  EXPECT_EQ((*child)->waitUntilExit(), 3);
  EXPECT_EQ((*child)->readStandardOutput(), "once\n");
  EXPECT_EQ((*child)->readStandardOutput(), "once\n");
}

TEST_F(PosixProcessLauncherTest, SilentGrandchildThatKeepsThePipeDoesNotHoldTheWaitUp) {
  const auto outcome = run(shell({"sleep 300 & echo $!; exit 4"}));
  const pid_t grandchild = std::stoi("0" + outcome.output);
  ASSERT_GT(grandchild, 1);
  EXPECT_EQ(kill(grandchild, 0), 0);  // it outlived the wait
  kill(grandchild, SIGKILL);
  EXPECT_EQ(outcome.status, 4);
}

TEST_F(PosixProcessLauncherTest, GrandchildThatWritesWithoutEndDoesNotHoldTheWaitUp) {
  // It ends by itself: nobody reads its pipe after the wait.
  const auto outcome = run(shell({"echo first; yes 2>/dev/null & exit 5"}));
  EXPECT_EQ(outcome.status, 5);
  EXPECT_TRUE(outcome.output.starts_with("first\n"));
}

TEST_F(PosixProcessLauncherTest, ChildThatClosesItsOutputsEarlyIsWaitedFor) {
  const auto outcome = run(
      shell({"echo out; exec >&- 2>&-; sleep 0.05; exit 6"}, ChildOutput::pipe, ChildOutput::pipe));
  EXPECT_EQ(outcome.status, 6);
  EXPECT_EQ(outcome.output, "out\n");
}

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

TEST_F(PosixProcessLauncherTest, DroppedChildRunsOnAndIsNoZombieAfterTheNextLaunch) {
  const TemporaryFolder folder;
  const auto mark = folder.path() + "/mark";
  ASSERT_TRUE(launcher_.launch(shell({"sleep 0.02; : > \"$0\"", mark})));  // dropped at once
  siginfo_t ended = {};
  ASSERT_EQ(waitid(P_ALL, 0, &ended, WEXITED | WNOWAIT), 0);
  EXPECT_EQ(access(mark.c_str(), F_OK), 0);
  EXPECT_EQ(kill(ended.si_pid, 0), 0);  // a zombie, until now
  EXPECT_EQ(run(shell({"exit 0"})).status, 0);
  EXPECT_EQ(kill(ended.si_pid, 0), -1);
  EXPECT_EQ(errno, ESRCH);
}

TEST_F(PosixProcessLauncherTest, ChildOutlivingTheLauncherIsStillWaitedFor) {
  std::unique_ptr<ChildProcess> child;
  {
    PosixProcessLauncher shortLived("/bin");
    auto launched = shortLived.launch(shell({"exit 9"}));
    ASSERT_TRUE(launched);
    child = std::move(*launched);
  }
  EXPECT_EQ(child->waitUntilExit(), 9);
}

TEST_F(PosixProcessLauncherTest, StatusArrivesThoughTheProgramWasStartedWithIgnoredChildSignals) {
  auto* before = signal(SIGCHLD, SIG_IGN);
  PosixProcessLauncher launcher("/bin");
  auto child = launcher.launch(shell({"exit 5"}));
  ASSERT_TRUE(child);
  EXPECT_EQ((*child)->waitUntilExit(), 5);
  signal(SIGCHLD, before);
}

TEST_F(PosixProcessLauncherTest, StatusCollectedBySomebodyElseIsNotWaitedForForEver) {
  auto child = launcher_.launch(shell({"exit 0"}, ChildOutput::inherit));
  ASSERT_TRUE(child);
  ASSERT_GT(waitpid(-1, nullptr, 0), 0);
  EXPECT_EQ((*child)->waitUntilExit(), 255);
}

TEST_F(PosixProcessLauncherTest, RunningOutOfDescriptorsIsAnErrorAndPasses) {
  rlimit before = {};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
  const Descriptor next(open("/dev/null", O_RDONLY | O_CLOEXEC));
  const rlimit none = {static_cast<rlim_t>(next.get()) + 1, before.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
  const auto refused = launcher_.launch(shell({"exit 0"}));
  setrlimit(RLIMIT_NOFILE, &before);
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.errorText(), "Too many open files");
  EXPECT_EQ(run(shell({"exit 0"})).status, 0);
}

TEST_F(PosixProcessLauncherTest, ManyLaunchesLeaveNoDescriptorOpen) {
  const Descriptor before(open("/dev/null", O_RDONLY | O_CLOEXEC));
  for (int i = 0; i < 5; ++i) {
    run(shell({"echo x"}, ChildOutput::pipe, ChildOutput::pipe));
    EXPECT_FALSE(launcher_.launch({"/no/such/program", {}, ChildOutput::pipe, ChildOutput::pipe}));
  }
  const Descriptor after(open("/dev/null", O_RDONLY | O_CLOEXEC));
  EXPECT_EQ(after.get(), before.get() + 1);
}

TEST_F(PosixProcessLauncherTest, ThreadsLaunchSideBySideAndEachGetsItsOwnOutput) {
  std::vector<std::thread> threads;
  for (int number = 0; number < 4; ++number) {
    threads.emplace_back([this, number] {
      for (int i = 0; i < 8; ++i) {
        const auto text = std::to_string(number) + "-" + std::to_string(i);
        EXPECT_EQ(run(shell({"echo " + text})).output, text + "\n");
        EXPECT_TRUE(launcher_.launch(shell({"exit 0"}, ChildOutput::inherit)));  // dropped
      }
    });
  }
  for (auto& thread : threads) thread.join();
  // What was dropped last ends soon; each launch sweeps.
  EXPECT_TRUE(eventually(
      [this] {
        run(shell({"exit 0"}));
        return waitpid(-1, nullptr, WNOHANG) < 0 && errno == ECHILD;
      },
      std::chrono::seconds(10)));
}

}  // namespace
}  // namespace quillmont
