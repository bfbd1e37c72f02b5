#include "platform/linux/running_instances.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>

#include "tests/support/FakeSystem.h"
#include "tests/support/Program.h"

namespace quillmont {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// A child that does something, tells one character, and stays until it is killed.
struct Child {
  pid_t pid = -1;
  char told = 0;

  explicit Child(const std::function<char()>& act) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return;
    pid = fork();
    if (pid == 0) {
      alarm(30);
      const char character = act();
      if (write(ends[1], &character, 1) != 1) _exit(1);
      for (;;) ::pause();
    }
    close(ends[1]);
    if (read(ends[0], &told, 1) != 1) told = 0;
    close(ends[0]);
  }
  ~Child() { end(); }
  void end() {
    if (pid < 0) return;
    kill(pid, SIGKILL);
    waitpid(pid, nullptr, 0);
    pid = -1;
  }
};

struct RunningInstances : ::testing::Test {
  testing::TemporaryFolder temporary;
  const std::string folder = temporary.path();
  Descriptor registration;
  testing::RecordingLog log;

  std::vector<std::int32_t> look() {
    return runningInstances(folder, registration, log, std::chrono::milliseconds(20));
  }
  std::string lockOf(pid_t pid) const { return folder + "/" + std::to_string(pid); }

  /// What an instance does when it starts.
  char start() { return look().size() == 1 ? 'S' : 'L'; }

  Descriptor lockedFile(int pid, time_t started) {
    Descriptor file(open(lockOf(pid).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    flock(file.get(), LOCK_EX);
    const timespec times[2] = {{started, 0}, {started, 0}};
    futimens(file.get(), times);
    return file;
  }
};

TEST_F(RunningInstances, TheFirstOneFindsItselfAlone) {
  EXPECT_THAT(look(), ElementsAre(getpid()));
  EXPECT_TRUE(registration);
  EXPECT_EQ(fcntl(registration.get(), F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
  EXPECT_TRUE(fs::exists(lockOf(getpid())));
  EXPECT_THAT(look(), ElementsAre(getpid()));
  EXPECT_THAT(log.lines, IsEmpty());
}

TEST_F(RunningInstances, ALaterOneSeesTheEarlierOneAndIsNotSeen) {
  const Child earlier([this] { return start(); });
  ASSERT_EQ(earlier.told, 'S');
  EXPECT_THAT(look(), ElementsAre(earlier.pid, getpid()));
  EXPECT_FALSE(registration);
  EXPECT_FALSE(fs::exists(lockOf(getpid())));
  const Child third([&] { return look() == std::vector{earlier.pid, getpid()} ? 'y' : 'n'; });
  EXPECT_EQ(third.told, 'y');
}

TEST_F(RunningInstances, AKilledOneLeavesAFileThatTheNextOneRemoves) {
  Child earlier([this] { return start(); });
  const auto left = lockOf(earlier.pid);
  earlier.end();
  ASSERT_TRUE(fs::exists(left));
  EXPECT_THAT(look(), ElementsAre(getpid()));
  EXPECT_FALSE(fs::exists(left));
}

TEST_F(RunningInstances, AFileThatAnEarlierProcessOfTheSameNumberLeftIsNoHindrance) {
  std::ofstream(lockOf(getpid())).put('x');
  EXPECT_THAT(look(), ElementsAre(getpid()));
  const Child later([this] {
    registration.release();  // the inherited one is the parent's
    return start();
  });
  EXPECT_EQ(later.told, 'L');
}

TEST_F(RunningInstances, AreListedOldestFirst) {
  const auto middle = lockedFile(4000001, 2000), oldest = lockedFile(4000003, 1000),
             twin = lockedFile(4000002, 2000);
  EXPECT_THAT(look(), ElementsAre(4000003, 4000001, 4000002, getpid()));
}

TEST_F(RunningInstances, OtherThingsInTheFolderAreLeftAlone) {
  for (const char* name : {"x", "12x", "-3", "+4", "0", "99999999999999", "ghosts"}) {
    std::ofstream(folder + "/" + name).put('x');
  }
  fs::create_directory(lockOf(4000001));
  ASSERT_EQ(mkfifo(lockOf(4000002).c_str(), 0600), 0);
  fs::create_symlink("/etc/passwd", lockOf(4000003));
  EXPECT_THAT(look(), ElementsAre(getpid()));
  for (const char* name : {"x", "12x", "-3", "+4", "0", "99999999999999", "ghosts"}) {
    EXPECT_TRUE(fs::exists(folder + "/" + name)) << name;
  }
  EXPECT_TRUE(fs::is_symlink(lockOf(4000003)));
}

TEST_F(RunningInstances, OneThatWasStoppedAtTheGateKeepsNobodyOut) {
  const Child stopped([this] {
    const int gate = open((folder + "/.gate").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    return flock(gate, LOCK_EX) == 0 ? 'g' : 'f';
  });
  ASSERT_EQ(stopped.told, 'g');
  const auto left = lockOf(4000001);
  std::ofstream(left).put('x');
  EXPECT_THAT(look(), ElementsAre(getpid()));
  EXPECT_TRUE(registration);
  EXPECT_TRUE(fs::exists(left));  // removing is for those who hold the gate
  EXPECT_THAT(log.lines, SizeIs(1));
}

TEST_F(RunningInstances, AFolderThatIsGoneGivesAnAnswerAndALogLine) {
  fs::remove_all(folder);
  EXPECT_THAT(look(), ElementsAre(getpid()));
  EXPECT_FALSE(registration);
  EXPECT_FALSE(log.lines.empty());
}

TEST_F(RunningInstances, OfSixSimultaneousStartsExactlyOneStays) {
  for (int round = 0; round < 20; ++round) {
    int start[2], result[2];
    ASSERT_EQ(pipe2(start, O_CLOEXEC), 0);
    ASSERT_EQ(pipe2(result, O_CLOEXEC), 0);
    std::vector<pid_t> children;
    for (int child = 0; child < 6; ++child) {
      children.push_back(fork());
      if (children.back() != 0) continue;
      alarm(30);
      char answer = 0;
      close(start[1]);
      if (read(start[0], &answer, 1) != 0) _exit(1);  // all see the end of the pipe at once
      const auto seen = runningInstances(folder, registration, log, std::chrono::seconds(20));
      answer = seen.size() == 1 ? 'S' : 'L';
      if (write(result[1], &answer, 1) != 1 || answer == 'L') _exit(0);
      for (;;) ::pause();
    }
    close(start[0]);
    close(result[1]);
    close(start[1]);
    std::string answers;
    char answer = 0;
    while (answers.size() < 6 && read(result[0], &answer, 1) == 1) answers += answer;
    for (const auto pid : children) {
      kill(pid, SIGKILL);
      waitpid(pid, nullptr, 0);
    }
    close(result[0]);
    ASSERT_EQ(answers.size(), 6u);
    EXPECT_EQ(std::count(answers.begin(), answers.end(), 'S'), 1) << round << answers;
  }
}

}  // namespace
}  // namespace quillmont
