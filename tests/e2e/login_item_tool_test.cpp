// The service manager tool, driven by the command lines of the settings.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "platform/linux/XmlPropertyLists.h"
#include "platform/posix/PosixFileManager.h"
#include "platform/posix/PosixProcessLauncher.h"
#include "tests/support/Program.h"
#include "tests/support/TestHost.h"

namespace quillmont {
namespace {

using testing::environmentWith;

constexpr char kLibexec[] = QUILLMONT_BUNDLE "/Contents/libexec";

std::string contents(const std::string& path) {
  std::ostringstream text;
  text << std::ifstream(path).rdbuf();
  return text.str();
}

/// A user's home folder with an agent file, as the program writes it.
class LoginItemTool : public ::testing::Test {
 protected:
  void SetUp() override { writeAgent(home_); }

  void writeAgent(const std::string& home) const {
    std::filesystem::create_directories(home + "/Library/LaunchAgents");
    std::ofstream(agentIn(home)) << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                                    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                                    "<plist version=\"1.0\"><dict>\n"
                                    "<key>Label</key><string>com.norwaldex.quillmont</string>\n"
                                    "<key>ProgramArguments</key><array><string>"
                                 << program_
                                 << "</string></array>\n"
                                    "<key>RunAtLoad</key><true/><key>KeepAlive</key><false/>\n"
                                    "</dict></plist>\n";
  }

  static std::string agentIn(const std::string& home) {
    return home + "/Library/LaunchAgents/com.norwaldex.quillmont.plist";
  }

  static std::string entryIn(const std::string& home) {
    return home + "/.config/autostart/com.norwaldex.quillmont.desktop";
  }

  testing::Environment environment(const std::string& home) const {
    const char* path = getenv("PATH");
    return environmentWith({{"HOME", home},
                            {"XDG_CONFIG_HOME", ""},
                            {"PATH", std::string(kLibexec) + ":" + (path ? path : "/bin")}});
  }

  /// Runs one verb and, where it fails, the legacy one; silent as the program does it.
  testing::Outcome runPair(const std::string& verb, const std::string& legacy,
                           const std::string& home) const {
    const auto agent = agentIn(home);
    const auto line = "launchctl " + verb + " gui/" + std::to_string(getuid()) + " " + agent +
                      " 2>/dev/null || launchctl " + legacy + " " + agent + " 2>/dev/null";
    return testing::run({"/bin/bash", "-c", line}, environment(home));
  }

  testing::Outcome on() const { return runPair("bootstrap", "load", home_); }
  testing::Outcome off() const { return runPair("bootout", "unload", home_); }

  testing::Outcome tool(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), std::string(kLibexec) + "/launchctl");
    return testing::run(arguments, environment(home_));
  }

  const testing::TemporaryFolder folder_;
  const std::string home_ = folder_.path() + "/user";
  const std::string program_ = "/opt/My Apps/Quillmont/Contents/MacOS/Quillmont";
};

TEST_F(LoginItemTool, SwitchingOnMakesTheAutostartEntry) {
  EXPECT_EQ(on().status, 0);
  EXPECT_EQ(contents(entryIn(home_)),
            "[Desktop Entry]\n"
            "Type=Application\n"
            "Name=Quillmont\n"
            "Exec=\"" +
                program_ +
                "\"\n"
                "TryExec=" +
                program_ +
                "\n"
                "X-GNOME-Autostart-enabled=true\n"
                "NoDisplay=true\n"
                "X-Quillmont-LaunchAgent=" +
                agentIn(home_) + "\n");
}

/// From the setting to the desktop's entry, with nothing in between but the real parts.
TEST_F(LoginItemTool, SettingMakesTheAgentAndTheEntryAndTakesThemAway) {
  const testing::TemporaryFolder other;
  setenv("HOME", other.path().c_str(), 1);
  unsetenv("XDG_CONFIG_HOME");
  testing::TestHost system;
  XmlPropertyLists lists;
  PosixFileManager files({other.path() + "/Library"});
  PosixProcessLauncher processes(std::string(kLibexec) + ":/usr/bin:/bin");
  ConfigManager config({.processes = processes,
                        .propertyLists = lists,
                        .defaults = system.defaults,
                        .files = files,
                        .bundle = system.bundle,
                        .log = system.log,
                        .mainRunLoop = system.runLoop,
                        .queues = system.queues,
                        .clock = system.clock,
                        .workspace = system.workspace,
                        .application = system.application,
                        .desktop = system.desktop,
                        .tools = {},
                        .processIdentifier = getpid(),
                        .userIdentifier = getuid()});
  for (int round = 0; round < 2; ++round) {
    config.setLaunchAtLogin(true);
    const auto agent = contents(agentIn(other.path()));
    EXPECT_TRUE(agent.starts_with("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n")) << agent;
    EXPECT_EQ(*lists.parse(agent),
              PropertyList(PropertyListDictionary{
                  {"Label", "com.norwaldex.quillmont"},
                  {"ProgramArguments", PropertyListArray{*system.bundle.executable}},
                  {"RunAtLoad", true},
                  {"KeepAlive", false}}));
    EXPECT_NE(contents(entryIn(other.path())).find("Exec=" + *system.bundle.executable + "\n"),
              std::string::npos);
  }
  config.setLaunchAtLogin(false);
  EXPECT_FALSE(std::filesystem::exists(agentIn(other.path())));
  EXPECT_FALSE(std::filesystem::exists(entryIn(other.path())));
  EXPECT_TRUE(system.log.lines.empty());
}

TEST_F(LoginItemTool, SwitchingOnTwiceRewritesTheEntryQuietly) {
  EXPECT_EQ(on().status, 0);
  const auto entry = contents(entryIn(home_));
  std::ofstream(entryIn(home_)) << "[Desktop Entry]\nExec=/old/place\n";
  const auto outcome = on();
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.standardOutput + outcome.standardError, "");
  EXPECT_EQ(contents(entryIn(home_)), entry);
}

TEST_F(LoginItemTool, SwitchingOffRemovesTheEntry) {
  EXPECT_EQ(on().status, 0);
  EXPECT_EQ(off().status, 0);
  EXPECT_FALSE(std::filesystem::exists(entryIn(home_)));
}

TEST_F(LoginItemTool, SwitchingOffWithoutAnAgentFileStillRemovesTheEntry) {
  EXPECT_EQ(on().status, 0);
  std::filesystem::remove(agentIn(home_));
  EXPECT_EQ(off().status, 0);
  EXPECT_FALSE(std::filesystem::exists(entryIn(home_)));
}

TEST_F(LoginItemTool, SwitchingOffWhatWasNeverOnEndsQuietly) {
  std::filesystem::remove(agentIn(home_));
  const auto outcome = off();
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.standardOutput + outcome.standardError, "");
}

TEST_F(LoginItemTool, HomeFolderWithASpaceBreaksTheLineAndHarmsNothing) {
  const auto home = folder_.path() + "/the user";
  writeAgent(home);
  const auto outcome = runPair("bootstrap", "load", home);
  EXPECT_EQ(outcome.status, 64);
  EXPECT_EQ(outcome.standardOutput + outcome.standardError, "");
  EXPECT_FALSE(std::filesystem::exists(entryIn(home)));
  EXPECT_TRUE(std::filesystem::exists(agentIn(home)));
  EXPECT_EQ(runPair("bootout", "unload", home).status, 64);
}

TEST_F(LoginItemTool, ConfigurationFolderOfTheDesktopIsUsed) {
  const auto config = folder_.path() + "/elsewhere";
  auto changed = environment(home_);
  changed["XDG_CONFIG_HOME"] = config;
  const auto command = "launchctl load " + agentIn(home_);
  EXPECT_EQ(testing::run({"/bin/bash", "-c", command}, changed).status, 0);
  EXPECT_TRUE(std::filesystem::exists(config + "/autostart/com.norwaldex.quillmont.desktop"));
  EXPECT_FALSE(std::filesystem::exists(entryIn(home_)));
}

TEST_F(LoginItemTool, SecondBootstrapNamesTheErrorOfTheMac) {
  const auto domain = "gui/" + std::to_string(getuid());
  EXPECT_EQ(tool({"bootstrap", domain, agentIn(home_)}).status, 0);
  const auto second = tool({"bootstrap", domain, agentIn(home_)});
  EXPECT_EQ(second.status, 5);
  EXPECT_EQ(second.standardError, "Bootstrap failed: 5: Input/output error\n");
}

TEST_F(LoginItemTool, NothingLoadedIsAnErrorForBootoutAlone) {
  EXPECT_EQ(tool({"bootout", "gui/" + std::to_string(getuid()), agentIn(home_)}).status, 3);
  EXPECT_EQ(tool({"unload", agentIn(home_)}).status, 0);
}

TEST_F(LoginItemTool, DomainOfAnotherUserIsRefused) {
  const auto outcome = tool({"bootstrap", "gui/" + std::to_string(getuid() + 1), agentIn(home_)});
  EXPECT_NE(outcome.status, 0);
  EXPECT_FALSE(outcome.standardError.empty());
  EXPECT_FALSE(std::filesystem::exists(entryIn(home_)));
}

TEST_F(LoginItemTool, OtherArgumentsGetTheUsage) {
  const std::vector<std::vector<std::string>> refused = {
      {}, {"list"}, {"load"}, {"load", "-w", "x"}, {"bootstrap", "system", "x"}};
  for (const auto& arguments : refused) {
    const auto outcome = tool(arguments);
    EXPECT_EQ(outcome.status, 64);
    EXPECT_EQ(outcome.standardError.substr(0, 6), "usage:");
    EXPECT_EQ(outcome.standardOutput, "");
  }
}

}  // namespace
}  // namespace quillmont
