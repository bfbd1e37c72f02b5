// The uninstall script leaves what belongs to others, however close to the program it lies.

#include "tests/e2e/UninstallTest.h"

namespace quillmont::testing {
namespace {

namespace fs = std::filesystem;

TEST_F(UninstallTest, FilesOfOthersInTheProgramsFoldersStay) {
  put(settingsFolder + "/notes.txt", "the user's");
  put(settingsFolder + "/" + kSettings + ".damaged-by-me", "the user's");
  put(settingsFolder + "/" + kSettings + ".backup", "the user's");
  put(agentsFolder + "/com.norwaldex.other.plist", "another one's");
  put(bundle + "2/other");
  const auto before = listing();
  installScriptAlone(bundle);
  put(settingsFolder + "/" + kSettings);
  put(agentsFolder + "/" + kAgent);
  EXPECT_EQ(uninstall().status, 0);
  EXPECT_EQ(listing(), before);
}

TEST_F(UninstallTest, FolderUnderTheNameOfAFileStays) {
  put(settingsFolder + "/" + kSettings + "/notes.txt", "the user's");
  put(home + "/.config/autostart/" + kEntry + ".new/notes.txt", "the user's");
  put(bundle + "2/other");
  const auto before = listing();
  installScriptAlone(bundle);
  EXPECT_EQ(uninstall().status, 0);
  EXPECT_EQ(listing(), before);
}

TEST_F(UninstallTest, LoginItemOfSomebodyElseUnderTheProgramsNameStays) {
  put(home + "/.config/autostart/" + kEntry, "[Desktop Entry]\nExec=/their/own\n");
  put(bundle + "2/other");
  const auto before = listing();
  install();
  EXPECT_EQ(uninstall().status, 0);
  EXPECT_EQ(listing(), before);
}

TEST_F(UninstallTest, CommandOfSomebodyElseUnderTheProgramsNameStays) {
  put(home + "/.local/bin/quillmont", "#!/bin/sh\n");
  put(bundle + "2/other");
  const auto before = listing();
  installScriptAlone(bundle);
  EXPECT_EQ(uninstall().status, 0);
  EXPECT_EQ(listing(), before);
}

/// Each folder that the program has to itself, as a link to one full of what it would delete.
TEST_F(UninstallTest, LinksInPlaceOfFoldersGoAndTheirTargetsStay) {
  const auto precious = root + "/precious";
  put(precious + "/" + kSettings, "the user's");
  put(precious + "/" + kSettings + ".damaged-20260102T030405Z", "the user's");
  put(precious + "/Library/LaunchAgents/" + kAgent, "the user's");
  put(precious + "/4711", "the user's");
  for (const auto* place : {"/.config/", "/.local/share/", "/.local/state/", "/.cache/"}) {
    put(home + place + "other", "another one's");
  }
  put(bundle + "2/other");
  const auto before = listing();
  installScriptAlone(bundle);
  for (const auto* place : {"/.config/", "/.local/share/", "/.local/state/", "/.cache/"}) {
    link(precious, home + place + "quillmont");
  }
  link(precious, home + "/.cache/com.norwaldex.Quillmont");
  link(precious, runtime + "/com.norwaldex.Quillmont");
  EXPECT_EQ(uninstall().status, 0);
  EXPECT_EQ(listing(), before);
}

TEST_F(UninstallTest, LinksInPlaceOfFilesAndInnerFoldersAreNotFollowed) {
  const auto precious = root + "/precious";
  put(precious + "/" + kSettings, "the user's");
  put(precious + "/LaunchAgents/" + kAgent, "the user's");
  put(home + "/.config/other");
  link(precious, home + "/.local/share/quillmont/Library");
  put(bundle + "2/other");
  auto expected = listing();
  installScriptAlone(bundle);
  link(precious + "/" + kSettings, settingsFolder + "/" + kSettings);
  link(precious, home + "/.cache/quillmont/inner");
  put(home + "/.cache/other");
  EXPECT_EQ(uninstall().status, 0);
  expected.erase(fs::path(home).filename() / ".local/share/quillmont/Library");
  expected.erase(fs::path(home).filename() / ".local/share/quillmont");
  expected[fs::path(home).filename() / ".cache"] = "folder";
  expected[fs::path(home).filename() / ".cache/other"] = "file: ";
  EXPECT_EQ(listing(), expected);
}

/// Installed for all users, and run by one who may not delete it.
TEST_F(UninstallTest, ApplicationOfAnAdministratorIsLeftToHim) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can be several users";
  const auto installed = root + "/local/lib/quillmont";
  installScriptAlone(installed);
  put(settingsFolder + "/" + kSettings);
  ASSERT_EQ(run({"chown", "-R", "65534:65534", home, runtime}).status, 0);
  const auto before = listingOf(root + "/local");
  Program script({"/bin/bash", scriptOf(installed)}, environment, 65534);
  EXPECT_EQ(script.waitForExit(std::chrono::seconds(20)), 1);
  EXPECT_EQ(script.output(), "deleted " + settingsFolder + "/" + kSettings + "\ndeleted " +
                                 settingsFolder + "\nuninstall: left " + installed +
                                 ": deleting it takes an administrator\n");
  EXPECT_EQ(listingOf(root + "/local"), before);
}

/// As when root runs with another user's variables.
TEST_F(UninstallTest, FoldersOfSomebodyElseAreNotLookedInto) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give a folder away";
  const auto theirs = root + "/theirs";
  put(theirs + "/quillmont/" + kSettings, "another one's");
  put(theirs + "/com.norwaldex.Quillmont/1", "another one's");
  put(theirs + "/autostart/" + kEntry, "[Desktop Entry]\nX-Quillmont-LaunchAgent=/there\n");
  ASSERT_EQ(run({"chown", "-R", "65534:65534", theirs}).status, 0);
  for (const auto* name : {"CONFIG_HOME", "DATA_HOME", "STATE_HOME", "CACHE_HOME", "RUNTIME_DIR"}) {
    environment[std::string("XDG_") + name] = theirs;
  }
  const auto before = listingOf(theirs);
  installScriptAlone(bundle);
  const auto outcome = uninstall();
  EXPECT_EQ(outcome.status, 0) << outcome.standardError;
  EXPECT_EQ(listingOf(theirs), before);
}

}  // namespace
}  // namespace quillmont::testing
