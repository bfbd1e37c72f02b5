#include "platform/Host.h"

#include <signal.h>
#include <unistd.h>

#include "platform/macos/FoundationPropertyLists.h"
#include "platform/macos/MacBundle.h"
#include "platform/macos/MacWorkspace.h"
#include "platform/macos/MainRunLoop.h"
#include "platform/macos/StandardDefaults.h"
#include "platform/macos/SystemLog.h"
#include "platform/macos/background_thread.h"
#include "platform/macos/desktop/MacDesktop.h"
#include "platform/macos/library_folders.h"
#include "platform/macos/self_check.h"
#include "platform/posix/PosixFileManager.h"
#include "platform/posix/PosixProcessLauncher.h"
#include "platform/posix/SystemClock.h"
#include "platform/posix/ThreadQueue.h"
#include "platform/posix/files.h"

namespace quillmont {
namespace {

constexpr char kChildSearchPath[] = "/usr/bin:/bin:/usr/sbin:/sbin";

/// The parts in the order in which they need one another. The application blocks its signals before
/// anything can start a thread.
struct MacHost {
  SystemLog log;
  MainRunLoop loop;
  AppKitApplication application{loop};
  MacDesktop desktop{application};
  SystemClock clock;
  ThreadQueues queues{kBackgroundThread};
  MacBundle bundle;
  PosixProcessLauncher processes{kChildSearchPath};
  PosixFileManager files{libraryFolders()};
  FoundationPropertyLists propertyLists;
  StandardDefaults defaults{kBundleIdentifier, log};
  MacWorkspace workspace;
};

const Host* makeHost() {
  leaveStartFolder();
  signal(SIGPIPE, SIG_IGN);
  auto& parts = *new MacHost;
#ifndef NDEBUG
  reportSelfCheck(parts.log);
#endif
  return new Host{.processes = parts.processes,
                  .propertyLists = parts.propertyLists,
                  .defaults = parts.defaults,
                  .files = parts.files,
                  .bundle = parts.bundle,
                  .log = parts.log,
                  .mainRunLoop = parts.loop,
                  .queues = parts.queues,
                  .clock = parts.clock,
                  .workspace = parts.workspace,
                  .application = parts.application,
                  .desktop = parts.desktop,
                  .tools = {},
                  .processIdentifier = getpid(),
                  .userIdentifier = getuid()};
}

}  // namespace

const Host& Host::current() {
  // Never destroyed: threads may still use it while the process ends.
  static const Host* const host = makeHost();
  return *host;
}

}  // namespace quillmont
