#include "platform/linux/LinuxApplication.h"

#include <errno.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <functional>
#include <string>

#include "tests/support/forked.h"

namespace quillmont {
namespace {

using testing::forked;

struct Recorder : ApplicationDelegate {
  std::string events;
  std::function<void()> atLaunch = [] {};
  std::function<void()> atEnd = [] {};
  void applicationDidFinishLaunching() override {
    events += "launched ";
    atLaunch();
  }
  void applicationWillTerminate() override {
    events += "terminating ";
    atEnd();
  }
};

/// A launched application, alone in a process: it changes signals for good.
struct Fixture {
  EventLoop loop;
  LinuxApplication application{loop};
  Recorder delegate;
  Fixture() { application.setDelegate(&delegate); }
};

TEST(LinuxApplication, LaunchesServesAndTerminates) {
  EXPECT_EQ(forked([] {
              Fixture f;
              f.loop.async([&] {
                f.delegate.events += "task ";
                f.application.terminate();
                f.application.terminate();
              });
              f.application.run();
              EXPECT_EQ(f.delegate.events, "launched task terminating ");
            }),
            0);
}

TEST(LinuxApplication, TerminatedWhileItLaunchesServesNothing) {
  EXPECT_EQ(forked([] {
              Fixture f;
              f.loop.async([&] { f.delegate.events += "task "; });
              f.delegate.atLaunch = [&] { f.application.terminate(); };
              f.application.run();
              EXPECT_EQ(f.delegate.events, "launched terminating ");
            }),
            0);
}

TEST(LinuxApplication, EndsInOrderOnEachTerminationSignal) {
  for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
    EXPECT_EQ(forked([number] {
                signal(number, SIG_DFL);
                Fixture f;
                f.delegate.atLaunch = [number] { kill(getpid(), number); };
                f.application.run();
                EXPECT_EQ(f.delegate.events, "launched terminating ");
              }),
              0)
        << number;
  }
}

TEST(LinuxApplication, SignalsBeforeTheLaunchEndItAfterTheLaunch) {
  EXPECT_EQ(forked([] {
              Fixture f;
              kill(getpid(), SIGTERM);
              f.application.run();
              EXPECT_EQ(f.delegate.events, "launched terminating ");
            }),
            0);
}

TEST(LinuxApplication, ASecondSignalWhileItTerminatesDoesNothing) {
  EXPECT_EQ(forked([] {
              Fixture f;
              f.delegate.atLaunch = [] { kill(getpid(), SIGTERM); };
              f.delegate.atEnd = [&] {
                kill(getpid(), SIGTERM);
                f.loop.dispatchPending();
                f.delegate.events += "terminated ";
              };
              f.application.run();
              EXPECT_EQ(f.delegate.events, "launched terminating terminated ");
            }),
            0);
}

TEST(LinuxApplication, ASignalThatWasIgnoredAtTheStartStaysIgnored) {
  EXPECT_EQ(forked([] {
              signal(SIGHUP, SIG_IGN);
              Fixture f;
              f.delegate.atLaunch = [&] {
                kill(getpid(), SIGHUP);
                f.loop.dispatchPending();
                f.delegate.events += "still there ";
                kill(getpid(), SIGTERM);
              };
              f.application.run();
              EXPECT_EQ(f.delegate.events, "launched still there terminating ");
            }),
            0);
}

TEST(LinuxApplication, AClosedPipeIsAnErrorAndNoSignal) {
  EXPECT_EQ(forked([] {
              Fixture f;
              int ends[2];
              ASSERT_EQ(pipe(ends), 0);
              close(ends[0]);
              EXPECT_EQ(write(ends[1], "x", 1), -1);
              EXPECT_EQ(errno, EPIPE);
            }),
            0);
}

TEST(LinuxApplication, RunsWithoutADelegate) {
  EXPECT_EQ(forked([] {
              Fixture f;
              f.application.setDelegate(nullptr);
              f.loop.async([&] { f.application.terminate(); });
              f.application.run();
            }),
            0);
}

}  // namespace
}  // namespace quillmont
