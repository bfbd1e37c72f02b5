#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <thread>

#include "platform/posix/Descriptor.h"
#include "platform/posix/PosixProcessLauncherTest.h"
#include "platform/posix/files.h"
#include "tests/support/Program.h"

namespace quillmont {
namespace {

using testing::eventually;
using testing::PosixProcessLauncherTest;
using testing::shell;
using testing::TemporaryFolder;

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
