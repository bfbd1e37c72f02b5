#include "platform/Host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <thread>

#include "platform/Application.h"
#include "platform/Bundle.h"
#include "platform/FileManager.h"
#include "platform/ProcessLauncher.h"
#include "platform/RunLoop.h"
#include "platform/SerialQueue.h"
#include "platform/UserDefaults.h"
#include "platform/Workspace.h"
#include "tests/support/Program.h"
#include "tests/support/forked.h"

namespace quillmont {
namespace {

namespace fs = std::filesystem;
using testing::forked;

/// In a child: all of the user's folders are below `home`.
void moveHome(const std::string& home) {
  for (const char* name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME"}) unsetenv(name);
  setenv("HOME", home.c_str(), 1);
  setenv("XDG_RUNTIME_DIR", home.c_str(), 1);
}

std::string pathOfChildren(const Host& host) {
  auto child =
      host.processes.launch({host.tools.shell, {"-c", "echo -n \"$PATH\""}, ChildOutput::pipe});
  if (!child || (*child)->waitUntilExit() != 0) return "";
  return (*child)->readStandardOutput();
}

TEST(Host, BringsUpItsPartsOnce) {
  const testing::TemporaryFolder home;
  EXPECT_EQ(forked([&] {
              moveHome(home.path());
              const Host& host = Host::current();
              EXPECT_EQ(&host, &Host::current());
              EXPECT_EQ(host.processIdentifier, getpid());
              EXPECT_EQ(host.userIdentifier, getuid());
              EXPECT_EQ(host.bundle.identifier(), kBundleIdentifier);
              const auto tools = host.bundle.path() + "/Contents/libexec/";
              EXPECT_EQ(host.tools.diskImageTool, tools + "hdiutil");
              EXPECT_EQ(host.tools.openFilesTool, tools + "lsof");
              EXPECT_EQ(host.tools.scriptRunner, tools + "osascript");
              EXPECT_EQ(host.tools.shell, "/bin/bash");
              EXPECT_THAT(host.files.userLibraryFolders(),
                          ::testing::ElementsAre(home.path() + "/.local/share/quillmont/Library"));
            }),
            0);
}

TEST(Host, KeepsSettingsInTheUsersConfigurationFolder) {
  const testing::TemporaryFolder home;
  EXPECT_EQ(
      forked([&] {
        moveHome(home.path());
        auto& defaults = Host::current().defaults;
        EXPECT_FALSE(fs::exists(home.path() + "/.config/quillmont"));
        defaults.setBool("enabled", true);
        EXPECT_TRUE(fs::exists(home.path() + "/.config/quillmont/com.norwaldex.Quillmont.plist"));
      }),
      0);
}

TEST(Host, ChildrenFindItsToolsFirst) {
  const testing::TemporaryFolder home;
  EXPECT_EQ(forked([&] {
              moveHome(home.path());
              const Host& host = Host::current();
              EXPECT_EQ(pathOfChildren(host),
                        host.bundle.path() + "/Contents/libexec:" + home.path() +
                            "/com.norwaldex.Quillmont/bin" +
                            ":/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin");
            }),
            0);
}

TEST(Host, RuntimeFolderThatIsOpenToOthersLendsNoTools) {
  const testing::TemporaryFolder home;
  EXPECT_EQ(forked([&] {
              moveHome(home.path());
              const auto runtime = home.path() + "/com.norwaldex.Quillmont";
              fs::create_directories(runtime + "/bin");
              fs::permissions(runtime, fs::perms(0777));
              const Host& host = Host::current();
              EXPECT_EQ(pathOfChildren(host),
                        host.bundle.path() +
                            "/Contents/libexec:/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:"
                            "/sbin:/bin");
            }),
            0);
}

TEST(Host, WorkGoesToTheQueueAndBackToTheMainThread) {
  const testing::TemporaryFolder home;
  EXPECT_EQ(forked([&] {
              moveHome(home.path());
              const Host& host = Host::current();
              const auto queue = host.queues.makeBackgroundQueue("test");
              const auto main = std::this_thread::get_id();
              bool back = false;
              queue->async([&] {
                EXPECT_NE(std::this_thread::get_id(), main);
                host.mainRunLoop.async([&] {
                  back = std::this_thread::get_id() == main;
                  host.application.terminate();
                });
              });
              host.application.run();
              EXPECT_TRUE(back);
            }),
            0);
}

TEST(Host, OneThatIsAloneLeavesNoLinkIntoAnEarlierProcess) {
  const testing::TemporaryFolder home;
  EXPECT_EQ(forked([&] {
              moveHome(home.path());
              const Host& host = Host::current();
              const auto folder = home.path() + "/com.norwaldex.Quillmont/bin";
              fs::create_directory(folder);
              fs::create_symlink("/proc/1/fd/3", folder + "/launchctl");
              EXPECT_EQ(host.workspace.runningApplications(kBundleIdentifier).size(), 1u);
              // The test program has no launchctl beside it that could be kept instead.
              EXPECT_FALSE(fs::is_symlink(folder + "/launchctl"));
            }),
            0);
}

}  // namespace
}  // namespace quillmont
