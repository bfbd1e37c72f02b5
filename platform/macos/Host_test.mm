#include "platform/Host.h"

#import <Foundation/Foundation.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "platform/Bundle.h"
#include "platform/FileManager.h"
#include "platform/ProcessLauncher.h"
#include "platform/RunLoop.h"
#include "platform/SerialQueue.h"
#include "platform/macos/library_folders.h"

namespace quillmont {
namespace {

TEST(Host, BringsUpItsPartsOnce) {
  const Host& host = Host::current();
  EXPECT_EQ(&host, &Host::current());
  EXPECT_EQ(host.processIdentifier, getpid());
  EXPECT_EQ(host.userIdentifier, getuid());
  EXPECT_EQ(host.files.userLibraryFolders(), libraryFolders());
  EXPECT_TRUE(host.files.exists(host.bundle.path())) << host.bundle.path();
}

TEST(Host, NamesTheSystemsOwnTools) {
  const ToolPaths& tools = Host::current().tools;
  EXPECT_EQ(tools.diskImageTool, "/usr/bin/hdiutil");
  EXPECT_EQ(tools.openFilesTool, "/usr/sbin/lsof");
  EXPECT_EQ(tools.scriptRunner, "/usr/bin/osascript");
  EXPECT_EQ(tools.shell, "/bin/bash");
}

TEST(Host, ChildrenFindTheSystemsToolsAndNothingElse) {
  const Host& host = Host::current();
  auto child =
      host.processes.launch({host.tools.shell, {"-c", "echo -n \"$PATH\""}, ChildOutput::pipe});
  ASSERT_TRUE(child) << child.errorText();
  EXPECT_EQ((*child)->waitUntilExit(), 0);
  EXPECT_EQ((*child)->readStandardOutput(), "/usr/bin:/bin:/usr/sbin:/sbin");
}

TEST(Host, LeavesTheFolderInWhichItWasStartedAndBearsABrokenPipe) {
  Host::current();
  EXPECT_EQ(std::filesystem::current_path(), "/");
  struct sigaction action = {};
  sigaction(SIGPIPE, nullptr, &action);
  EXPECT_EQ(action.sa_handler, SIG_IGN);
}

TEST(Host, WorkGoesToTheQueueAndBackToTheMainThread) {
  const Host& host = Host::current();
  const auto queue = host.queues.makeBackgroundQueue("test");
  const auto main = std::this_thread::get_id();
  bool done = false;
  queue->async([&] {
    EXPECT_NE(std::this_thread::get_id(), main);
    host.mainRunLoop.async([&] {
      EXPECT_EQ(std::this_thread::get_id(), main);
      done = true;
    });
  });
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (!done && std::chrono::steady_clock::now() < end) {
    @autoreleasepool {
      [[NSRunLoop mainRunLoop] runMode:NSDefaultRunLoopMode
                            beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.05]];
    }
  }
  EXPECT_TRUE(done);
}

}  // namespace
}  // namespace quillmont
