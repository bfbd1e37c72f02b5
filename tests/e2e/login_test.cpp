// Start at login: switched on and off in the panel, and then carried out by what reads the
// autostart folder when a desktop's session begins.

#include <sys/prctl.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "tests/e2e/PanelTest.h"

namespace quillmont::testing {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

struct SessionManager {
  std::string name;
  std::vector<std::string> command;
};

class Login : public PanelTest, public ::testing::WithParamInterface<SessionManager> {
 protected:
  void SetUp() override {
    PanelTest::SetUp();
    if (IsSkipped()) return;
    const auto& tool = GetParam().command.front();
    if (run({tool, "--version"}).status != 0) GTEST_SKIP() << "there is no " << tool << " here";
    // What the session manager starts and leaves behind becomes the test's to end.
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    startDesktop();
    putWitness();
  }

  void TearDown() override {
    endStarted();
    PanelTest::TearDown();
  }

  std::string witness() const { return session->folder() + "/home/witness"; }

  /// Another program that starts at login: whether the session manager has done its work.
  void putWitness() const {
    const auto entry = fs::path(session->loginItem()).parent_path() / "witness.desktop";
    fs::create_directories(entry.parent_path());
    std::ofstream(entry) << "[Desktop Entry]\nType=Application\nName=Witness\nExec=touch "
                         << witness() << "\n";
  }

  /// Of the session, with the desktop that there is now.
  Environment environmentOnDesktop() const {
    auto environment = session->environment();
    for (const auto& [name, value] : lab->changes()) {
      environment.erase(name);
      if (!value.empty()) environment[name] = value;
    }
    return environment;
  }

  /// Starts the program by hand, sets the check box on the panel, and ends the program.
  void setLaunchAtLogin(bool on) {
    program = std::make_unique<Program>(
        std::vector<std::string>{session->bundle() + "/Contents/MacOS/Quillmont"},
        environmentOnDesktop());
    openPanel();
    lab->click(lab->control("check box", "开机自动启动"));
    EXPECT_TRUE(eventually([&] { return fs::exists(session->loginItem()) == on; }, 10s));
    program->signal(SIGTERM);
    EXPECT_EQ(program->waitForExit(10s), 0) << program->output();
    program.reset();
  }

  /// A new desktop for the same user, and the session manager's work upon it, done.
  void logIn() {
    lab = std::make_unique<DesktopLab>();
    auto environment = environmentOnDesktop();
    // What this machine's own packages would start is none of the test's.
    environment["XDG_CONFIG_DIRS"] = session->folder() + "/none";
    Program manager(GetParam().command, environment);
    EXPECT_EQ(manager.waitForExit(20s), 0) << manager.output();
    EXPECT_TRUE(eventually([this] { return fs::exists(witness()); }, 10s)) << manager.output();
    fs::remove(witness());
  }

  bool iconShows(Milliseconds limit) {
    return eventually([this] { return windowOfWidth(8, 64).has_value(); }, limit);
  }

  static std::string executableOf(pid_t process) {
    return fs::read_symlink("/proc/" + std::to_string(process) + "/exe");
  }

  /// The process that has left its lock in the session's runtime folder; 0 if none runs.
  pid_t started() const {
    const auto folder = session->folder() + "/runtime/com.norwaldex.Quillmont";
    std::error_code failure;
    for (const auto& entry : fs::directory_iterator(folder, failure)) {
      const auto number = std::atoi(entry.path().filename().c_str());
      if (number > 0 && kill(number, 0) == 0) return number;
    }
    return 0;
  }

  void endStarted() const {
    const auto process = session ? started() : 0;
    if (process == 0) return;
    kill(process, SIGTERM);
    int status = -1;
    EXPECT_TRUE(eventually([&] { return waitpid(process, &status, WNOHANG) == process; }, 10s));
    EXPECT_EQ(status, 0);
  }
};

TEST_P(Login, ProgramIsStartedWhereItIsSwitchedOnAndNotWhereItIsSwitchedOffAgain) {
  setLaunchAtLogin(true);
  logIn();
  ASSERT_TRUE(iconShows(20s));
  EXPECT_EQ(executableOf(started()), session->bundle() + "/Contents/MacOS/Quillmont");
  endStarted();

  setLaunchAtLogin(false);
  logIn();
  EXPECT_FALSE(iconShows(2s));
  EXPECT_EQ(started(), 0);
}

INSTANTIATE_TEST_SUITE_P(SessionManagers, Login,
                         ::testing::Values(SessionManager{"Dex", {"dex", "--autostart"}},
                                           SessionManager{
                                               "Openbox",
                                               {"/usr/lib/x86_64-linux-gnu/openbox-xdg-autostart",
                                                "OPENBOX"}}),
                         [](const auto& tested) { return tested.param.name; });

}  // namespace
}  // namespace quillmont::testing
