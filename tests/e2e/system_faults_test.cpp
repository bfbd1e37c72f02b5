// A system that has no more to give, and a session whose message bus is gone.

#include <sys/resource.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "platform/linux/XmlPropertyLists.h"
#include "tests/e2e/ProgramTest.h"
#include "tests/support/processes.h"

namespace quillmont::testing {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using ::testing::HasSubstr;

constexpr uid_t kNobody = 65534;

/// A program that may have no more of something while this lives.
class Limited {
 public:
  /// `option` is that of prlimit(1). Its user sets it: the superuser of a container may not always.
  Limited(const Program& program, const std::string& option, int limit, uid_t user)
      : program_(program), option_(option), user_(user) {
    set(std::to_string(limit));
  }
  /// The program has inherited the test's own limit.
  ~Limited() {
    rlimit own = {};
    getrlimit(option_ == "--nproc" ? RLIMIT_NPROC : RLIMIT_NOFILE, &own);
    set(own.rlim_cur == RLIM_INFINITY ? "unlimited" : std::to_string(own.rlim_cur));
  }
  Limited(const Limited&) = delete;
  Limited& operator=(const Limited&) = delete;

 private:
  void set(const std::string& softLimit) const {
    Program setter(
        {"prlimit", "--pid", std::to_string(program_.pid()), option_ + "=" + softLimit + ":"}, {},
        user_);
    EXPECT_EQ(setter.waitForExit(5s), 0) << setter.output();
  }

  const Program& program_;
  const std::string option_;
  const uid_t user_;
};

using SystemFaultsOnImages = ProgramWithImages;

TEST_F(SystemFaultsOnImages, WithoutDescriptorsNothingIsEjectedAndItGoesOnWhenThereAreSome) {
  session->store({{"timeoutSeconds", 2.0}});
  const auto mountPoint = attach("Crowded");
  Program holder({"tail", "-f", DiskImages::realPlace("Crowded") + "/note.txt"});
  start();
  ASSERT_TRUE(program->waitForOutput("Disk image is in use: " + mountPoint + " (tail)\n", 5s))
      << output();
  const auto descriptors = openDescriptors(program->pid());
  {
    const Limited none(*program, "--nofile", 3, /*user=*/0);
    EXPECT_TRUE(program->waitForOutput("Error scanning mounted images: Too many open files\n", 7s))
        << output();
    EXPECT_TRUE(listed(mountPoint));
  }
  EXPECT_TRUE(program->waitForOutput("Disk image is in use: " + mountPoint + " (tail)\n", 7s, 2))
      << output();
  EXPECT_LE(openDescriptors(program->pid()), descriptors + 2) << "a tool may be running";
  EXPECT_EQ(terminate(), 0);
}

TEST_F(SystemFaultsOnImages, BusThatDiesCostsTheNotificationAlone) {
  session->store({{"timeoutSeconds", 2.0}});
  const auto mountPoint = attach("Silent");
  start();
  ASSERT_TRUE(waitUntilIdle(mountPoint)) << output();
  bus->kill();
  EXPECT_TRUE(waitUntilEjected(mountPoint)) << output();
  EXPECT_TRUE(program->waitForOutput("osascript: cannot reach the session bus: ", 3s)) << output();
  EXPECT_EQ(countOf("Successfully ejected", output()), 1);
  EXPECT_EQ(terminate(), 0);
}

TEST_F(SystemFaultsOnImages, SessionWithoutABusIsWatchedAndTheLostNotificationIsTold) {
  session = std::make_unique<Session>();
  session->store({{"timeoutSeconds", 1.0}});
  const auto mountPoint = attach("Alone");
  start();
  EXPECT_TRUE(waitUntilEjected(mountPoint)) << output();
  EXPECT_TRUE(program->waitForOutput(
      "osascript: cannot reach the session bus: No such file or directory\n", 3s))
      << output();
  EXPECT_EQ(terminate(), 0);
}

TEST_F(SystemFaultsOnImages, BusThatSaysNothingIsGivenUpAtTheStart) {
  const auto mountPoint = attach("Patient");
  bus->silence();
  start();
  EXPECT_TRUE(
      program->waitForOutput("The session bus does not answer: going on without it.\n", 15s))
      << output();
  EXPECT_TRUE(waitUntilIdle(mountPoint)) << output();
  EXPECT_EQ(terminate(), 0);
}

class SystemFaults : public ProgramTest {
 protected:
  /// Whether the test may become somebody whose processes are counted; the superuser's are not.
  bool canBeNobody() const { return geteuid() == 0; }

  /// Everything of the session is nobody's from now on.
  void giveToNobody() const {
    EXPECT_EQ(run({"chown", "-R", std::to_string(kNobody), session->folder()}).status, 0);
  }

  std::string programPath() const { return session->bundle() + "/Contents/MacOS/Quillmont"; }

  /// The disk-image tool lists one image that nobody uses.
  void playAnImage() const {
    session->replaceTool("hdiutil", "exec cat \"$state/list\"\n");
    session->replaceTool("lsof", "exit 1\n");
    const PropertyListDictionary volume = {{"mount-point", "/Volumes/Played"},
                                           {"dev-entry", "/dev/null"}};
    const PropertyListDictionary image = {{"image-path", "/played.dmg"},
                                          {"system-entities", PropertyListArray{volume}}};
    const PropertyListDictionary list = {{"images", PropertyListArray{image}}};
    std::ofstream(session->folder() + "/state-hdiutil/list") << *XmlPropertyLists().xml(list);
  }
};

TEST_F(SystemFaults, WithoutProcessesItSaysSoAndGoesOnWhenThereAreSome) {
  if (!canBeNobody()) GTEST_SKIP() << "only the superuser can start a program for nobody";
  session->store({{"isEnabled", false}});
  playAnImage();
  giveToNobody();
  program = std::make_unique<Program>(std::vector<std::string>{programPath()},
                                      session->environment(), kNobody);
  const std::string idle = "Disk image is idle: /Volumes/Played\n";
  ASSERT_TRUE(program->waitForOutput(idle, 5s)) << output();
  {
    const Limited none(*program, "--nproc", 1, kNobody);
    EXPECT_TRUE(program->waitForOutput(
        "Error scanning mounted images: Resource temporarily unavailable\n", 7s))
        << output();
  }
  EXPECT_TRUE(program->waitForOutput(idle, 7s, 2)) << output();
  EXPECT_EQ(terminate(), 0);
}

TEST_F(SystemFaults, StartWithoutRoomForThreadsEndsWithALogLine) {
  if (!canBeNobody()) GTEST_SKIP() << "only the superuser can start a program for nobody";
  giveToNobody();
  program =
      std::make_unique<Program>(std::vector<std::string>{"prlimit", "--nproc=1", programPath()},
                                session->environment(), kNobody);
  EXPECT_EQ(program->waitForExit(10s), 1);
  EXPECT_THAT(output(), HasSubstr("Quillmont cannot go on: Resource temporarily unavailable\n"));
}

TEST_F(SystemFaults, StartWithoutDescriptorsEndsWithALogLine) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "a sanitizer needs descriptors for looks of its own";
#endif
  // What the test was started with, and left open, would count as well.
  const std::string command = "exec 3>&- 4>&- 5>&- 6>&- 7>&- 8>&- 9>&-; exec \"$@\"";
  program =
      std::make_unique<Program>(std::vector<std::string>{"bash", "-c", command, "bash", "prlimit",
                                                         "--nofile=4", "--core=0", programPath()},
                                session->environment());
  EXPECT_EQ(program->waitForExit(10s), 1);
  EXPECT_THAT(output(), HasSubstr("Quillmont cannot go on: "));
  EXPECT_THAT(output(), HasSubstr(": Too many open files\n"));
}

}  // namespace
}  // namespace quillmont::testing
