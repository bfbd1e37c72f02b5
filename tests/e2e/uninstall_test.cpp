// The uninstall script on Linux: everything of the program goes, and nothing else.

#include <fstream>

#include "tests/e2e/UninstallTest.h"

namespace quillmont::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::AllOf;
using ::testing::HasSubstr;

/// A home folder in which everything of the program is there, and a lot that looks like it.
class Uninstall : public UninstallTest {
 protected:
  void putNeighbours() const {
    put(home + "/.config/quillmont2/" + kSettings, "another one's");
    put(home + "/.config/Quillmont/" + kSettings, "another one's");
    put(home + "/.config/other/" + kSettings, "another one's");
    put(home + "/.config/" + kSettings, "another one's");
    put(home + "/.config/autostart/com.norwaldex.quillmont2.desktop", "another one's");
    put(home + "/.config/autostart/com.norwaldex.Quillmont.desktop", "another one's");
    put(home + "/.config/autostart/quillmont.desktop", "another one's");
    put(home + "/.local/share/quillmont.old/Library/LaunchAgents/" + kAgent, "another one's");
    put(home + "/.local/share/applications/org.quillmont.desktop", "another one's");
    put(home + "/.local/share/icons/hicolor/scalable/apps/quillmont2.svg", "another one's");
    put(home + "/.local/share/icons/hicolor/48x48/apps/quillmont2.png", "another one's");
    put(home + "/.local/share/metainfo/com.norwaldex.Quillmont2.metainfo.xml", "another one's");
    put(home + "/.local/share/man/man1/quillmont2.1.gz", "another one's");
    put(home + "/.local/share/man/zh_CN/man1/quillmont2.1.gz", "another one's");
    put(home + "/.local/share/doc/quillmont2/copyright", "another one's");
    put(home + "/.local/state/quillmonts/log", "another one's");
    put(home + "/.local/lib/quillmont2/Contents/MacOS/Quillmont", "another one's");
    put(home + "/.local/bin/quillmontctl", "another one's");
    put(home + "/.cache/com.norwaldex.Quillmont2/1", "another one's");
    put(home + "/Library/LaunchAgents/" + kAgent, "another one's");
    put(home + "/quillmont/letter", "the user's");
    put(runtime + "/com.norwaldex.Quillmont2/1", "another one's");
  }

  void putAgentAndLoginItem() const {
    const auto agent = agentsFolder + "/" + kAgent;
    put(agent,
        "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>Label</key>"
        "<string>com.norwaldex.quillmont</string><key>ProgramArguments</key><array>"
        "<string>/there</string></array><key>RunAtLoad</key><true/></dict></plist>");
    ASSERT_EQ(
        run({QUILLMONT_BUNDLE "/Contents/libexec/launchctl", "load", agent}, environment).status,
        0);
    ASSERT_TRUE(fs::exists(home + "/.config/autostart/" + kEntry));
  }

  void putEverything() const {
    install();
    link("../lib/quillmont/Contents/MacOS/Quillmont", home + "/.local/bin/quillmont");
    put(home + "/.local/share/applications/quillmont.desktop");
    put(home + "/.local/share/icons/hicolor/scalable/apps/quillmont.svg");
    put(home + "/.local/share/icons/hicolor/48x48/apps/quillmont.png");
    put(home + "/.local/share/metainfo/com.norwaldex.Quillmont.metainfo.xml");
    put(home + "/.local/share/man/man1/quillmont.1.gz");
    put(home + "/.local/share/man/zh_CN/man1/quillmont.1.gz");
    put(home + "/.local/share/doc/quillmont/copyright");
    putAgentAndLoginItem();
    put(home + "/.config/autostart/" + kEntry + ".new");
    put(settingsFolder + "/" + kSettings);
    put(settingsFolder + "/" + kSettings + ".new");
    put(settingsFolder + "/" + kSettings + ".damaged-20260102T030405Z");
    put(settingsFolder + "/" + kSettings + ".damaged-20260102T030405Z-2");
    put(home + "/.local/state/quillmont/logs/1");
    put(home + "/.cache/quillmont/thumbnails/1");
    put(home + "/.cache/com.norwaldex.Quillmont/.gate");
    put(runtime + "/com.norwaldex.Quillmont/4711");
    link("/proc/1/fd/1", runtime + "/com.norwaldex.Quillmont/bin/launchctl");
  }
};

TEST_F(Uninstall, EverythingOfTheProgramGoesAndNothingElse) {
  putNeighbours();
  const auto before = listing();
  putEverything();
  const auto outcome = uninstall();
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.standardError, "");
  EXPECT_EQ(listing(), before);
  EXPECT_THAT(outcome.standardOutput,
              AllOf(HasSubstr("unloaded com.norwaldex.quillmont\n"),
                    HasSubstr("deleted " + settingsFolder + "/" + kSettings + "\n"),
                    HasSubstr("deleted " + bundle + "\n")));
}

TEST_F(Uninstall, SecondRunDeletesTheApplicationAlone) {
  putNeighbours();
  const auto before = listing();
  putEverything();
  ASSERT_EQ(uninstall().status, 0);
  installScriptAlone(bundle);
  const auto outcome = uninstall();
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.standardOutput, "deleted " + bundle + "\n");
  EXPECT_EQ(outcome.standardError, "");
  EXPECT_EQ(listing(), before);
}

TEST_F(Uninstall, WhatIsLeftOfAHalfDeletedProgramGoes) {
  putNeighbours();
  const auto before = listing();
  putEverything();
  fs::remove_all(bundle + "/Contents/libexec");
  fs::remove_all(bundle + "/Contents/MacOS");
  fs::remove(agentsFolder + "/" + kAgent);
  fs::remove(settingsFolder + "/" + kSettings);
  EXPECT_EQ(uninstall().status, 0);
  EXPECT_EQ(listing(), before);
}

TEST_F(Uninstall, FoldersOfTheDesktopsChoiceAreLookedInto) {
  put(home + "/mine/config/other");
  put(home + "/mine/data/other");
  put(home + "/mine/state/other");
  put(home + "/mine/cache/other");
  environment["XDG_CONFIG_HOME"] = home + "/mine/config";
  environment["XDG_DATA_HOME"] = home + "/mine/data/";
  environment["XDG_STATE_HOME"] = home + "/mine/state";
  environment["XDG_CACHE_HOME"] = home + "/mine/cache";
  put(bundle + "2/" + kAgent);
  const auto before = listing();
  installScriptAlone(bundle);
  put(home + "/mine/config/quillmont/" + kSettings);
  put(home + "/mine/data/quillmont/Library/LaunchAgents/" + kAgent);
  put(home + "/mine/state/quillmont/log");
  put(home + "/mine/cache/quillmont/1");
  EXPECT_EQ(uninstall().status, 0);
  EXPECT_EQ(listing(), before);
}

TEST_F(Uninstall, VariablesThatAreNotAbsolutePathsCountAsUnset) {
  put(settingsFolder + "2/other");
  put(root + "/relative/quillmont/" + kSettings, "the user's");
  put(root + "/relative/com.norwaldex.Quillmont/1", "the user's");
  put(home + "/.local/lib/other");
  const auto before = listing();
  for (const std::string value : {"relative", "./relative", "../relative", " /", "~"}) {
    installScriptAlone(bundle);
    put(settingsFolder + "/" + kSettings);
    for (const auto* name : {"CONFIG_HOME", "DATA_HOME", "STATE_HOME", "CACHE_HOME"}) {
      environment[std::string("XDG_") + name] = value;
    }
    const auto outcome = run(
        {"sh", "-c", "cd \"$1\" && exec /bin/bash \"$0\"", scriptOf(bundle), root}, environment);
    EXPECT_EQ(outcome.status, 0) << outcome.standardError;
    EXPECT_EQ(listing(), before) << value;
  }
}

TEST_F(Uninstall, FolderThatIsNamedWithDotsIsTheOneThatTheProgramUses) {
  put(home + "/.config/other");
  put(home + "/sub/quillmont/" + kSettings, "the user's");
  put(bundle + "2/other");
  const auto before = listing();
  installScriptAlone(bundle);
  put(settingsFolder + "/" + kSettings);
  environment["XDG_CONFIG_HOME"] = home + "/sub/.././sub/../.config/.";
  EXPECT_EQ(uninstall().status, 0);
  EXPECT_EQ(listing(), before);
}

TEST_F(Uninstall, VariableThatNamesTheRootFolderIsNotFollowed) {
  put(bundle + "2/other");
  const auto before = listing();
  for (const std::string value : {"/", "//", "/tmp/..", "/."}) {
    installScriptAlone(bundle);
    environment["XDG_CONFIG_HOME"] = environment["XDG_CACHE_HOME"] = value;
    const auto outcome = uninstall();
    EXPECT_EQ(outcome.standardOutput, "deleted " + bundle + "\n");
    EXPECT_EQ(listing(), before);
  }
}

TEST_F(Uninstall, HomeFolderNamedWithSlashesAndLinksIsTheSame) {
  putNeighbours();
  const auto before = listing();
  putEverything();
  environment["HOME"] = home + "///";
  EXPECT_EQ(uninstall().status, 0);
  EXPECT_EQ(listing(), before);

  fs::create_directory_symlink(home, root + "/link to home");
  const auto withLink = listing();
  putEverything();
  environment["HOME"] = root + "/link to home/";
  EXPECT_EQ(uninstall().status, 0);
  EXPECT_EQ(listing(), withLink);
}

TEST_F(Uninstall, NothingIsDoneWithoutAHomeFolder) {
  putNeighbours();
  putEverything();
  const auto before = listing();
  for (const std::string value : {"", "/", "//", "/..", "relative", "/nowhere/at/all"}) {
    environment["HOME"] = value;
    if (value.empty()) environment.erase("HOME");
    const auto outcome = uninstall();
    EXPECT_EQ(outcome.status, 1) << value;
    EXPECT_EQ(outcome.standardOutput, "");
    EXPECT_EQ(outcome.standardError, "uninstall: HOME does not name a home folder\n");
    EXPECT_EQ(listing(), before) << value;
  }
}

TEST_F(Uninstall, HomeFolderOfSomebodyElseIsLeftAlone) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give a folder away";
  putEverything();
  const auto before = listing();
  ASSERT_EQ(chown(home.c_str(), 65534, 65534), 0);
  const auto outcome = uninstall();
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.standardError, HasSubstr("belongs to somebody else"));
  EXPECT_EQ(listing(), before);
}

}  // namespace
}  // namespace quillmont::testing
