// Tools that misbehave: the program goes on, and leaves nothing of theirs behind.

#include <chrono>
#include <filesystem>
#include <fstream>

#include "tests/e2e/ProgramTest.h"
#include "tests/support/processes.h"

namespace quillmont::testing {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using ::testing::IsEmpty;
using ::testing::Not;

class ToolFaults : public ProgramWithImages {
 protected:
  /// What replaced tools have started and told of in a file "pids" is not left running.
  void TearDown() override {
    for (const auto pid : toldPids()) kill(pid, SIGKILL);
    ProgramWithImages::TearDown();
  }

  std::vector<pid_t> toldPids() const {
    std::vector<pid_t> result;
    if (!session) return result;
    for (const char* name : {"hdiutil", "lsof"}) {
      std::ifstream pids(session->folder() + "/state-" + name + "/pids");
      for (pid_t pid = 0; pids >> pid;) result.push_back(pid);
    }
    return result;
  }

  /// A script for a tool that behaves as `script` says the first time it is asked to do `what`.
  static std::string once(const std::string& what, const std::string& script) {
    return "if [ \"$1\" = " + what + " ] && [ ! -e \"$state/" + what +
           "\" ]; then\n  touch \"$state/" + what + "\"\n  " + script + "\nfi\n";
  }

  /// No descriptor more than `descriptors`, and no child that nobody waits for.
  void expectNothingLeft(long descriptors) {
    EXPECT_TRUE(eventually([&] { return openDescriptors(program->pid()) <= descriptors; }, 5s))
        << openDescriptors(program->pid()) << " instead of " << descriptors;
    EXPECT_TRUE(eventually([&] { return zombiesOf(program->pid()).empty(); }, 6s));
  }
};

TEST_F(ToolFaults, ToolThatMayNotBeExecutedIsToldAndUsedOnceItMay) {
  fs::permissions(session->tool("hdiutil"), fs::perms::owner_read);
  start();
  ASSERT_TRUE(program->waitForOutput("Error scanning mounted images: Permission denied\n", 5s))
      << output();
  fs::permissions(session->tool("hdiutil"), fs::perms::owner_all);
  const auto mountPoint = attach("Locked");
  EXPECT_TRUE(waitUntilIdle(mountPoint)) << output();
  EXPECT_EQ(terminate(), 0);
}

TEST_F(ToolFaults, ToolsThatAreKilledInTheMiddleAreAskedAgain) {
  session->store({{"timeoutSeconds", 1.0}});
  session->replaceTool("hdiutil",
                       once("info", "echo '<?xml version=\"1.0\"?><plist>'; kill -9 $$") +
                           once("detach", "kill -9 $$") + "exec \"$original\" \"$@\"\n");
  start();
  ASSERT_TRUE(program->waitForOutput("Error scanning mounted images: ", 5s)) << output();
  const auto mountPoint = attach("Killed");
  EXPECT_TRUE(program->waitForOutput(
      "Failed to eject: " + mountPoint + ". Code: process termination status 137\n", 10s))
      << output();
  EXPECT_TRUE(waitUntilEjected(mountPoint)) << output();
  EXPECT_EQ(terminate(), 0);
}

TEST_F(ToolFaults, GrandchildThatKeepsTheToolsPipesHoldsNothingUp) {
  session->store({{"timeoutSeconds", 2.0}});
  for (const char* name : {"hdiutil", "lsof"}) {
    session->replaceTool(name,
                         "sleep 300 &\necho $! >>\"$state/pids\"\nexec \"$original\" \"$@\"\n");
  }
  const auto mountPoint = attach("Haunted");
  start();
  ASSERT_TRUE(waitUntilIdle(mountPoint, 5s)) << output();
  const auto descriptors = openDescriptors(program->pid());
  EXPECT_TRUE(waitUntilEjected(mountPoint)) << output();
  EXPECT_THAT(toldPids(), Not(IsEmpty()));
  for (const auto pid : toldPids()) EXPECT_EQ(kill(pid, 0), 0) << "a grandchild is gone early";
  expectNothingLeft(descriptors);
  EXPECT_EQ(terminate(), 0);
}

TEST_F(ToolFaults, ToolThatClosesItsOutputsAndLivesOnIsWaitedFor) {
  session->replaceTool("lsof",
                       "[ \"$3\" = /Volumes/Quiet ] || exec \"$original\" \"$@\"\n"
                       "\"$original\" \"$@\"\nexec >&- 2>&-\nsleep 2\ntouch \"$state/ended\"\n");
  const auto mountPoint = attach("Quiet");
  Program holder({"tail", "-f", DiskImages::realPlace("Quiet") + "/note.txt"});
  start();
  EXPECT_TRUE(program->waitForOutput("Disk image is in use: " + mountPoint + " (tail)\n", 6s))
      << output();
  EXPECT_TRUE(fs::exists(session->folder() + "/state-lsof/ended"));
  EXPECT_EQ(terminate(), 0);
}

TEST_F(ToolFaults, ToolThatNeverEndsIsNotStartedAgainAndNobodyWaitsForItAtTheEnd) {
  session->store({{"timeoutSeconds", 1.0}});
  session->replaceTool("hdiutil", "echo $$ >>\"$state/pids\"\nexec sleep 300\n");
  start();
  ASSERT_TRUE(eventually([this] { return !toldPids().empty(); }, 5s));
  const auto mountPoint = attach("Hung");       // asks for a cycle
  EXPECT_FALSE(waitUntilIdle(mountPoint, 2s));  // longer than the timeout
  EXPECT_EQ(toldPids().size(), 1u) << "cycles wait for one another";
  EXPECT_TRUE(listed(mountPoint));
  const auto asked = std::chrono::steady_clock::now();
  EXPECT_EQ(terminate(), 0);
  EXPECT_LT(std::chrono::steady_clock::now() - asked, 5s);
}

}  // namespace
}  // namespace quillmont::testing
