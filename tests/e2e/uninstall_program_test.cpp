// The uninstall script and the program that runs, which has started it.

#include <signal.h>

#include "tests/e2e/UninstallTest.h"
#include "tests/support/DiskImages.h"

namespace quillmont::testing {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr char kExecutable[] = "/Contents/MacOS/Quillmont";
constexpr uid_t kNobody = 65534;

class UninstallRunning : public UninstallTest {
 protected:
  void SetUp() override { install(); }

  /// Starts the program of the bundle at `place`, with a runtime folder of its own, and waits until
  /// it is at work.
  std::unique_ptr<Program> start(const std::string& place, const std::string& runtimeFolder,
                                 uid_t user = 0) const {
    auto own = environment;
    own["XDG_RUNTIME_DIR"] = runtimeFolder;
    auto program =
        std::make_unique<Program>(std::vector<std::string>{place + kExecutable}, own, user);
    const auto link = runtimeFolder + "/com.norwaldex.Quillmont/bin/launchctl";
    EXPECT_TRUE(eventually([&] { return fs::is_symlink(link); }, 10s)) << program->output();
    return program;
  }
  std::unique_ptr<Program> start() const { return start(bundle, runtime); }

  std::string newRuntimeFolder(uid_t owner = 0) const {
    const auto path = root + "/other runtime";
    fs::create_directories(path);
    chmod(path.c_str(), 0700);
    EXPECT_EQ(chown(path.c_str(), owner == 0 ? geteuid() : owner, getegid()), 0);
    return path;
  }
};

TEST_F(UninstallRunning, ProgramOfTheBundleIsEnded) {
  const auto program = start();
  const auto outcome = uninstall();
  EXPECT_EQ(outcome.status, 0) << outcome.standardError;
  EXPECT_THAT(outcome.standardOutput, HasSubstr("ended the program\n"));
  EXPECT_EQ(program->waitForExit(1s), 0) << "asked, not killed";
  EXPECT_FALSE(fs::exists(bundle));
  EXPECT_FALSE(fs::exists(runtime + "/com.norwaldex.Quillmont"));
}

TEST_F(UninstallRunning, ProgramIsEndedWhenTheScriptIsReachedThroughALink) {
  fs::create_directory_symlink(home, root + "/link");
  const auto program = start();
  EXPECT_EQ(uninstall(root + "/link/.local/lib/quillmont").status, 0);
  EXPECT_EQ(program->waitForExit(1s), 0);
  EXPECT_FALSE(fs::exists(bundle));
}

TEST_F(UninstallRunning, ProgramWhoseFileIsGoneIsEnded) {
  const auto program = start();
  fs::remove(bundle + kExecutable);
  EXPECT_EQ(uninstall().status, 0);
  EXPECT_EQ(program->waitForExit(1s), 0);
}

TEST_F(UninstallRunning, ProgramOfTheSameNameFromElsewhereGoesOn) {
  const auto elsewhere = root + "/elsewhere/lib/quillmont";
  install(elsewhere);
  const auto other = start(elsewhere, newRuntimeFolder());
  const auto program = start();
  EXPECT_EQ(uninstall().status, 0);
  EXPECT_EQ(program->waitForExit(1s), 0);
  EXPECT_TRUE(other->running());
  EXPECT_TRUE(fs::exists(elsewhere + kExecutable));
}

TEST_F(UninstallRunning, ProgramOfAnotherUserGoesOn) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can be several users";
  const auto other = start(bundle, newRuntimeFolder(kNobody), kNobody);
  EXPECT_THAT(uninstall().standardOutput, Not(HasSubstr("ended the program")));
  // It finds out by itself that its bundle is gone.
  EXPECT_NE(other->waitForExit(10s), 128 + SIGTERM);
}

TEST_F(UninstallRunning, ProgramThatDoesNotAnswerIsKilled) {
  const auto program = start();
  program->signal(SIGSTOP);
  const auto outcome = uninstall();
  EXPECT_EQ(outcome.status, 0) << outcome.standardError;
  EXPECT_EQ(program->waitForExit(1s), 128 + SIGKILL);
  EXPECT_FALSE(fs::exists(bundle));
}

TEST_F(UninstallRunning, EjectionInProgressIsFinished) {
  if (const auto reason = DiskImages::whyImpossible(); !reason.empty()) GTEST_SKIP() << reason;
  DiskImages images(environment);
  const auto image = images.makeExt4("Last.img", "Last");
  ASSERT_EQ(images.attach(image).status, 0);
  const auto tool = bundle + "/Contents/libexec/hdiutil";
  fs::remove(tool);
  put(tool, "#!/bin/bash\n[ \"$1\" != detach ] || { [ \"$2\" = /Volumes/Last ] || exit 1; touch '" +
                root + "/detaching'; sleep 1; }\nexec '" + DiskImages::toolPath() + "' \"$@\"\n");
  chmod(tool.c_str(), 0755);
  put(settingsFolder + "/" + kSettings,
      "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict>"
      "<key>com.norwaldex.quillmont.timeoutSeconds</key><real>1</real></dict></plist>");
  const auto program = start();
  ASSERT_TRUE(eventually([&] { return fs::exists(root + "/detaching"); }, 15s));
  EXPECT_EQ(uninstall().status, 0);
  EXPECT_EQ(program->waitForExit(1s), 0);
  EXPECT_THAT(program->output(),
              HasSubstr("Successfully ejected and verified detached: /Volumes/Last\n"));
  EXPECT_TRUE(DiskImages::loopsOf(image).empty());
}

/// What started the script is gone, and so is everybody who would read what it says.
TEST_F(UninstallRunning, ScriptOutlivesWhoeverStartedIt) {
  const auto program = start();
  const auto control = bundle + "/Contents/libexec/launchctl";
  put(control, "#!/bin/bash\ntouch '" + root + "/unloading'\nsleep 1\n");
  chmod(control.c_str(), 0755);
  auto script = std::make_unique<Program>(
      std::vector<std::string>{"setsid", "/bin/bash", "-c", "/bin/bash \"$0\" & wait $!",
                               scriptOf(bundle)},
      environment);
  ASSERT_TRUE(eventually([&] { return fs::exists(root + "/unloading"); }, 10s));
  for (const int number : {SIGHUP, SIGINT, SIGPIPE, SIGQUIT, SIGTERM}) {
    kill(-script->pid(), number);
  }
  script.reset();  // and both its pipes
  EXPECT_TRUE(eventually([&] { return !fs::exists(bundle); }, 10s));
}

TEST_F(UninstallRunning, ClosedStreamsDoNotMatter) {
  put(settingsFolder + "/" + kSettings);
  EXPECT_EQ(
      run({"/bin/bash", "-c", "exec /bin/bash \"$0\" <&- >&- 2>&-", scriptOf(bundle)}, environment)
          .status,
      0);
  EXPECT_FALSE(fs::exists(settingsFolder));
  EXPECT_FALSE(fs::exists(bundle));
}

}  // namespace
}  // namespace quillmont::testing
