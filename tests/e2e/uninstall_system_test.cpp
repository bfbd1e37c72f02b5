// The uninstall script on systems other than this one: with a package manager that knows the
// program, and on a Mac. What stands in for their parts is laid over this system's in a mount table
// of the test's own.

#include "tests/e2e/UninstallTest.h"
#include "tests/support/NotificationRecorder.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/forked.h"

namespace quillmont::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::EndsWith;
using ::testing::HasSubstr;

class UninstallOnAnotherSystem : public UninstallTest {
 protected:
  void SetUp() override {
    if (!canMount()) GTEST_SKIP() << "no mount table of its own can be had here";
  }

  /// In a mount table of its own only.
  static void layOver(const std::string& source, const std::string& place) {
    ASSERT_EQ(mount(source.c_str(), place.c_str(), nullptr, MS_BIND, nullptr), 0) << place;
  }

  static void putTool(const std::string& path, const std::string& script) {
    put(path, "#!/bin/bash\n" + script);
    chmod(path.c_str(), 0755);
  }
};

class UninstallPackage : public UninstallOnAnotherSystem {
 protected:
  void SetUp() override {
    UninstallOnAnotherSystem::SetUp();
    if (IsSkipped()) return;
    if (!fs::exists("/usr/bin/dpkg-query")) GTEST_SKIP() << "this is no Debian system";
    put(bundle + "/Contents/MacOS/Quillmont", "the program");
    installScriptAlone(bundle);
    put(settingsFolder + "/" + kSettings);
    put(home + "/.local/bin/other");
    link("../lib/quillmont/Contents/MacOS/Quillmont", home + "/.local/bin/quillmont");
  }

  /// A package database in which `package` has installed `file`.
  void putDatabase(const std::string& package, const std::string& file) const {
    put(database + "/status", "Package: " + package +
                                  "\nStatus: install ok installed\nMaintainer: nobody\n"
                                  "Architecture: all\nVersion: 1\nDescription: a test's\n");
    put(database + "/info/format", "1\n");
    put(database + "/info/" + package + ".list", "/.\n" + file + "\n");
    put(database + "/updates/.keep");
    put(database + "/triggers/.keep");
  }

  /// Runs the script with that database for the system's.
  Outcome uninstallWithDatabase() const {
    const auto output = root + "/output";
    EXPECT_EQ(forked([&] {
                ASSERT_TRUE(enterOwnMountTable());
                layOver(database, "/var/lib/dpkg");
                const auto outcome = uninstall();
                put(output, outcome.standardOutput + outcome.standardError);
                EXPECT_EQ(outcome.status, 0);
              }),
              0);
    Outcome outcome;
    outcome.standardOutput = contentsOf(output);
    return outcome;
  }

  const std::string database = root + "/dpkg";
};

TEST_F(UninstallPackage, ApplicationOfAPackageIsLeftToThePackageManager) {
  putDatabase("quillmont", bundle + "/Contents/MacOS/Quillmont");
  const auto before = listingOf(home + "/.local");
  EXPECT_EQ(uninstallWithDatabase().standardOutput,
            "deleted " + settingsFolder + "/" + kSettings + "\ndeleted " + settingsFolder +
                "\nleft " + bundle +
                ": it is a package's, and goes with sudo apt-get remove quillmont\n");
  EXPECT_EQ(listingOf(home + "/.local"), before);
}

/// Who uninstalls from the panel reads no output.
TEST_F(UninstallPackage, NotificationSaysHowTheApplicationGoes) {
  if (!PrivateBus::available()) GTEST_SKIP() << "there is no dbus-daemon here";
  const PrivateBus bus;
  const NotificationRecorder recorder(bus.address());
  environment["DBUS_SESSION_BUS_ADDRESS"] = bus.address();
  const auto tool = "/Contents/libexec/osascript";
  fs::create_directories(bundle + "/Contents/libexec");
  fs::copy(QUILLMONT_BUNDLE + std::string(tool), bundle + tool);
  putDatabase("quillmont-beta", bundle + "/Contents/MacOS/Quillmont");
  uninstallWithDatabase();
  ASSERT_TRUE(recorder.waitForNotifications(1, std::chrono::seconds(10)));
  const auto notification = recorder.notifications().front();
  EXPECT_EQ(notification.title, "Quillmont 已卸载");
  EXPECT_THAT(notification.body, HasSubstr("请用 sudo apt-get remove quillmont-beta 删除。"));
}

TEST_F(UninstallPackage, ApplicationThatThePackageManagerDoesNotKnowGoes) {
  putDatabase("quillmont", "/usr/lib/quillmont/Contents/MacOS/Quillmont");
  EXPECT_THAT(uninstallWithDatabase().standardOutput, HasSubstr("deleted " + bundle + "\n"));
  EXPECT_FALSE(fs::exists(bundle));
  EXPECT_FALSE(fs::is_symlink(home + "/.local/bin/quillmont"));
}

TEST_F(UninstallPackage, ApplicationStaysWhileThePackageManagerCannotTell) {
  putDatabase("quillmont", "/usr/lib/other");
  put(database + "/status", "no database at all");
  EXPECT_THAT(uninstallWithDatabase().standardOutput, HasSubstr("left " + bundle));
  EXPECT_TRUE(fs::exists(bundle + "/Contents/MacOS/Quillmont"));
}

/// Of a package manager of another kind, say. Root could delete it.
TEST_F(UninstallPackage, SystemFolderIsLeftToPackagesThatNobodyKnows) {
  putDatabase("quillmont", "/usr/lib/other");
  installScriptAlone(root + "/upper/quillmont");
  fs::create_directories(root + "/work");
  const auto layers = "lowerdir=/usr/lib,upperdir=" + root + "/upper,workdir=" + root + "/work";
  const auto overlay = [&] {
    return enterOwnMountTable() && mount("overlay", "/usr/lib", "overlay", 0, layers.c_str()) == 0;
  };
  if (forked([&] { _exit(overlay() ? 0 : 1); }) != 0) GTEST_SKIP() << "no overlays here";
  EXPECT_EQ(forked([&] {
              ASSERT_TRUE(overlay());
              layOver(database, "/var/lib/dpkg");
              EXPECT_THAT(uninstall("/usr/lib/quillmont").standardOutput,
                          HasSubstr("left /usr/lib/quillmont: in that folder everything is"));
              EXPECT_TRUE(fs::exists("/usr/lib/quillmont/Contents/Resources/uninstall.sh"));
            }),
            0);
}

TEST_F(UninstallTest, BundleThatIsNotInstalledIsLeft) {
  put(home + "/.config/other");
  const auto place = home + "/build/Quillmont";
  installScriptAlone(place);
  const auto before = listing();
  put(settingsFolder + "/" + kSettings);
  const auto outcome = uninstall(place);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.standardOutput,
              EndsWith("left " + place + ": it is no installed application\n"));
  EXPECT_EQ(listing(), before);
}

TEST_F(UninstallTest, ScriptOutsideOfABundleDoesNothing) {
  put(settingsFolder + "/" + kSettings);
  const auto script = home + "/uninstall.sh";
  fs::copy(QUILLMONT_BUNDLE "/Contents/Resources/uninstall.sh", script);
  const auto before = listing();
  const auto outcome = run({"/bin/bash", script}, environment);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.standardError, "uninstall: this script does not lie in an application\n");
  EXPECT_EQ(listing(), before);
}

TEST_F(UninstallTest, ScriptIsFoundFromTheFolderThatItIsStartedIn) {
  installScriptAlone(bundle);
  const auto outcome = run(
      {"sh", "-c", "cd \"$0/Contents/Resources\" && /bin/bash uninstall.sh", bundle}, environment);
  EXPECT_EQ(outcome.status, 0) << outcome.standardError;
  EXPECT_FALSE(fs::exists(bundle));
}

class UninstallOnAMac : public UninstallOnAnotherSystem {
 protected:
  void SetUp() override {
    UninstallOnAnotherSystem::SetUp();
    if (IsSkipped()) return;
    putTool(root + "/uname", "echo Darwin\n");
    // As there: number and path of the program, and nothing of other users.
    putTool(root + "/ps",
            "for process in /proc/[0-9]*; do\n  [ -O $process ] || continue\n"
            "  printf '%7s %s\\n' ${process#/proc/} "
            "\"$(tr '\\0' '\\n' <$process/cmdline | head -n 1)\"\ndone\n");
    putTool(root + "/sbin/defaults", record + "rm \"$HOME/Library/Preferences/$2.plist\"\n");
    putTool(root + "/sbin/launchctl", record + "[ \"$1\" != bootout ] || exit 3\n");
  }

  /// Runs the script with those for the system's own.
  void uninstallOnAMac(int status = 0) const {
    EXPECT_EQ(forked([&] {
                ASSERT_TRUE(enterOwnMountTable());
                layOver(root + "/uname", "/usr/bin/uname");
                layOver(root + "/ps", "/usr/bin/ps");
                layOver(root + "/sbin", "/usr/sbin");
                // GNUstep has a tool of that name, which a Mac's path would find first.
                if (fs::exists("/usr/bin/defaults")) {
                  layOver(root + "/sbin/defaults", "/usr/bin/defaults");
                }
                const auto outcome = uninstall(application);
                EXPECT_EQ(outcome.status, status) << outcome.standardError;
              }),
              0);
  }

  std::string user() const { return std::to_string(geteuid()); }

  const std::string calls = root + "/calls";
  const std::string record = "echo \"${0##*/} $*\" >>'" + calls + "'\n";
  const std::string library = home + "/Library";
  const std::string application = home + "/Applications/Quillmont 2.app";
};

TEST_F(UninstallOnAMac, EverythingOfTheProgramGoesAndNothingElse) {
  const auto agent = library + "/LaunchAgents/" + kAgent;
  put(library + "/LaunchAgents/com.norwaldex.quillmont2.plist", "another one's");
  put(library + "/Preferences/com.norwaldex.Quillmont2.plist", "another one's");
  put(library + "/Logs/Quillmont2/log", "another one's");
  put(library + "/Caches/com.norwaldex.Quillmont2/1", "another one's");
  put(library + "/Saved Application State/com.norwaldex.other.savedState/1", "another one's");
  put(home + "/Applications/Quillmont.app/Contents/MacOS/Quillmont", "another one's");
  put(settingsFolder + "/" + kSettings, "nothing of a Mac's");
  put(calls);
  auto expected = listing();
  put(agent);
  put(library + "/Preferences/" + kSettings);
  put(library + "/Logs/Quillmont/log");
  put(library + "/Caches/com.norwaldex.Quillmont/1");
  put(library + "/Saved Application State/com.norwaldex.Quillmont.savedState/1");
  install(application);
  uninstallOnAMac();
  expected["calls"] = "file: launchctl bootout gui/" + user() +
                      "/com.norwaldex.quillmont\nlaunchctl unload " + agent +
                      "\ndefaults delete com.norwaldex.Quillmont\n";
  EXPECT_EQ(listing(), expected);
}

TEST_F(UninstallOnAMac, ProgramOfTheBundleIsEndedAndAnotherOneGoesOn) {
  install(application);
  const auto executable = application + "/Contents/MacOS/Quillmont";
  const auto other = root + "/Quillmont.app/Contents/MacOS/Quillmont";
  install(root + "/Quillmont.app");
  Program program({executable}, environment);
  auto elsewhere = environment;
  elsewhere["XDG_RUNTIME_DIR"] = root + "/runtime of the other";
  fs::create_directories(elsewhere["XDG_RUNTIME_DIR"]);
  chmod(elsewhere["XDG_RUNTIME_DIR"].c_str(), 0700);
  Program goesOn({other}, elsewhere);
  const auto isAtWork = [](const std::string& place) {
    return fs::is_symlink(place + "/com.norwaldex.Quillmont/bin/launchctl");
  };
  ASSERT_TRUE(
      eventually([&] { return isAtWork(runtime) && isAtWork(elsewhere["XDG_RUNTIME_DIR"]); },
                 std::chrono::seconds(10)));
  uninstallOnAMac();
  EXPECT_EQ(program.waitForExit(std::chrono::seconds(1)), 0);
  EXPECT_TRUE(goesOn.running());
  EXPECT_FALSE(fs::exists(application));
}

TEST_F(UninstallOnAMac, NothingToRemoveIsNoError) {
  installScriptAlone(application);
  uninstallOnAMac();
  EXPECT_FALSE(fs::exists(application));
}

TEST_F(UninstallOnAMac, FolderThatIsNoApplicationIsLeft) {
  const auto place = home + "/Quillmont.app.d";
  installScriptAlone(place);
  const auto before = listingOf(place);
  EXPECT_EQ(forked([&] {
              ASSERT_TRUE(enterOwnMountTable());
              layOver(root + "/uname", "/usr/bin/uname");
              EXPECT_THAT(uninstall(place).standardOutput,
                          HasSubstr(": it is no installed application\n"));
            }),
            0);
  EXPECT_EQ(listingOf(place), before);
}

}  // namespace
}  // namespace quillmont::testing
