#include <gmock/gmock.h>

#include "tests/support/TestHost.h"

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::TestHost;
using testing::ToolRun;

constexpr char kAgents[] = "/Users/user/Library/LaunchAgents";
constexpr char kAgent[] = "/Users/user/Library/LaunchAgents/com.norwaldex.quillmont.plist";

class LaunchAgent : public ::testing::Test {
 protected:
  LaunchAgent() {
    system.processes.tools["/bin/bash"] = [this](const Command& command) {
      commandLines.push_back(command.arguments.at(1));
      fileThere.push_back(system.files.files.contains(kAgent));
      return ToolRun{.status = 1};
    };
  }

  PropertyList contents() { return *system.propertyLists.parse(system.files.files.at(kAgent)); }

  TestHost system;
  ConfigManager config{system.host()};
  std::vector<std::string> commandLines;
  std::vector<bool> fileThere;  ///< at each command
};

TEST_F(LaunchAgent, TurningOnCreatesFolderAndFileThenLoads) {
  config.setLaunchAtLogin(true);
  EXPECT_TRUE(system.files.folders.contains(kAgents));
  EXPECT_THAT(commandLines,
              ElementsAre("launchctl bootstrap gui/501 "
                          "/Users/user/Library/LaunchAgents/com.norwaldex.quillmont.plist "
                          "2>/dev/null || launchctl load "
                          "/Users/user/Library/LaunchAgents/com.norwaldex.quillmont.plist "
                          "2>/dev/null"));
  EXPECT_THAT(fileThere, ElementsAre(true));
  const auto& shell = system.processes.launches.front();
  EXPECT_EQ(shell.path, "/bin/bash");
  EXPECT_EQ(shell.arguments.front(), "-c");
  EXPECT_EQ(shell.arguments.size(), 2u);
  EXPECT_EQ(shell.standardOutput, ChildOutput::inherit);
  EXPECT_EQ(shell.standardError, ChildOutput::inherit);
  EXPECT_TRUE(system.processes.waitedFor.contains(0));
}

TEST_F(LaunchAgent, FileHoldsExactlyTheFourKeys) {
  config.setLaunchAtLogin(true);
  EXPECT_EQ(contents(),
            PropertyList(PropertyListDictionary{
                {"Label", "com.norwaldex.quillmont"},
                {"ProgramArguments",
                 PropertyListArray{"/Applications/Quillmont.app/Contents/MacOS/Quillmont"}},
                {"RunAtLoad", true},
                {"KeepAlive", false}}));
}

TEST_F(LaunchAgent, WithoutExecutablePathTheBundlePathIsCompleted) {
  system.bundle.executable = std::nullopt;
  system.bundle.bundlePath = "/Apps/Q";
  config.setLaunchAtLogin(true);
  EXPECT_EQ(*contents().find("ProgramArguments"),
            PropertyList(PropertyListArray{"/Apps/Q/Contents/MacOS/Quillmont"}));
}

TEST_F(LaunchAgent, TurningOnTwiceRewritesAndLoadsAgain) {
  config.setLaunchAtLogin(true);
  system.files.files[kAgent] = "damaged";
  config.setLaunchAtLogin(true);
  EXPECT_EQ(commandLines.size(), 2u);
  EXPECT_EQ(commandLines[0], commandLines[1]);
  EXPECT_TRUE(contents().find("Label"));
}

TEST_F(LaunchAgent, TurningOffUnloadsThenDeletes) {
  config.setLaunchAtLogin(true);
  commandLines.clear();
  config.setLaunchAtLogin(false);
  EXPECT_THAT(commandLines,
              ElementsAre("launchctl bootout gui/501 "
                          "/Users/user/Library/LaunchAgents/com.norwaldex.quillmont.plist "
                          "2>/dev/null || launchctl unload "
                          "/Users/user/Library/LaunchAgents/com.norwaldex.quillmont.plist "
                          "2>/dev/null"));
  EXPECT_THAT(fileThere, ElementsAre(true, true)) << "the file goes after the command";
  EXPECT_THAT(system.files.files, IsEmpty());
}

TEST_F(LaunchAgent, TurningOffWithoutAFileRunsNoCommand) {
  config.setLaunchAtLogin(false);
  EXPECT_THAT(commandLines, IsEmpty());
}

TEST_F(LaunchAgent, CleaningWithoutAFileStillUnloadsAndEndsQuietly) {
  ConfigManager::cleanLaunchAgent(system.host());
  ASSERT_EQ(commandLines.size(), 1u);
  EXPECT_TRUE(commandLines.front().starts_with("launchctl bootout gui/501 "));
  EXPECT_THAT(system.log.lines, IsEmpty());
}

TEST_F(LaunchAgent, CleaningDeletesTheFileWhateverTheSettingSays) {
  config.setLaunchAtLogin(true);
  ConfigManager::cleanLaunchAgent(system.host());
  EXPECT_THAT(system.files.files, IsEmpty());
}

TEST_F(LaunchAgent, HomeFolderWithASpaceIsWrittenAsItIs) {
  system.files.libraryFolders = {"/Users/two words/Library"};
  config.setLaunchAtLogin(true);
  EXPECT_TRUE(system.files.files.contains(
      "/Users/two words/Library/LaunchAgents/com.norwaldex.quillmont.plist"));
  EXPECT_NE(commandLines.front().find(" /Users/two words/Library/LaunchAgents/"),
            std::string::npos);
  config.setLaunchAtLogin(false);
  EXPECT_THAT(system.files.files, IsEmpty());
  EXPECT_THAT(system.log.lines, IsEmpty());
}

TEST_F(LaunchAgent, FirstLibraryFolderIsTaken) {
  system.files.libraryFolders = {"/first", "/second"};
  config.setLaunchAtLogin(true);
  EXPECT_TRUE(system.files.files.contains("/first/LaunchAgents/com.norwaldex.quillmont.plist"));
}

TEST_F(LaunchAgent, FolderThatCannotBeMadeShowsAsAFailedWrite) {
  system.files.failing = {kAgents};
  config.setLaunchAtLogin(true);
  EXPECT_THAT(commandLines, IsEmpty());
  EXPECT_THAT(system.log.lines,
              ElementsAre("Failed to write/load LaunchAgent: No such file or directory"));
  EXPECT_TRUE(config.launchAtLogin()) << "the setting stays on";
}

TEST_F(LaunchAgent, FileThatCannotBeEncodedIsLoggedAndNotLoaded) {
  system.propertyLists.failing = true;
  config.setLaunchAtLogin(true);
  EXPECT_THAT(commandLines, IsEmpty());
  EXPECT_THAT(system.log.lines, ElementsAre("Failed to write/load LaunchAgent: cannot encode"));
}

TEST_F(LaunchAgent, FileThatCannotBeDeletedIsNotMentioned) {
  config.setLaunchAtLogin(true);
  system.files.failing = {kAgent};
  config.setLaunchAtLogin(false);
  EXPECT_THAT(system.log.lines, IsEmpty());
}

TEST_F(LaunchAgent, MissingShellIsNotMentioned) {
  system.processes.tools.clear();
  config.setLaunchAtLogin(true);
  config.setLaunchAtLogin(false);
  EXPECT_THAT(system.log.lines, IsEmpty());
  EXPECT_THAT(system.files.files, IsEmpty());
}

TEST_F(LaunchAgent, NoLibraryFolderIsFatal) {
  system.files.libraryFolders.clear();
  EXPECT_DEATH(config.setLaunchAtLogin(true), "");
}

}  // namespace
}  // namespace quillmont
