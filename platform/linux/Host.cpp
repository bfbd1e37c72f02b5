#include "platform/Host.h"

#include <unistd.h>

#include <cstdlib>
#include <string>

#include "platform/linux/EventLoop.h"
#include "platform/linux/LinuxBundle.h"
#include "platform/linux/LinuxWorkspace.h"
#include "platform/linux/PropertyListDefaults.h"
#include "platform/linux/StderrLog.h"
#include "platform/linux/XmlPropertyLists.h"
#include "platform/linux/background_thread.h"
#include "platform/linux/desktop/LinuxDesktop.h"
#include "platform/linux/desktop/QtApplication.h"
#include "platform/linux/kept_tool.h"
#include "platform/linux/question_series.h"
#include "platform/linux/start_room.h"
#include "platform/linux/user_folders.h"
#include "platform/posix/PosixFileManager.h"
#include "platform/posix/PosixProcessLauncher.h"
#include "platform/posix/SystemClock.h"
#include "platform/posix/ThreadQueue.h"
#include "platform/posix/files.h"

namespace quillmont {
namespace {

/// Qt's for the bus and for the display, the monitor's, and one for a tool.
constexpr int kThreads = 4;

/// Where this process keeps launchctl startable; empty without a runtime folder.
std::string keptToolsFolder() {
  const auto folder = runtimeFolder();
  return folder ? *folder + "/bin" : "";
}

/// The tools of the Mac's names come first, so that a shell finds launchctl like there.
std::string childSearchPath(const std::string& toolFolder, const std::string& keptTools) {
  std::string result = toolFolder;
  if (!keptTools.empty()) result += ":" + keptTools;
  return result + ":/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin";
}

ToolPaths toolPaths(const std::string& folder) {
  ToolPaths result;
  result.diskImageTool = folder + "/hdiutil";
  result.openFilesTool = folder + "/lsof";
  result.scriptRunner = folder + "/osascript";
  result.shell = "/bin/bash";
  return result;
}

/// The parts in the order in which they need one another. The application blocks its signals before
/// anything can start a thread.
struct LinuxHost {
  StderrLog log;
  EventLoop loop;
  QtApplication application{loop, log};
  LinuxDesktop desktop{application};
  SystemClock clock;
  ThreadQueues queues{kBackgroundThread};
  LinuxBundle bundle{LinuxBundle::executableLink()};
  std::string toolFolder = bundle.path() + "/Contents/libexec";
  std::string keptTools = keptToolsFolder();
  PosixProcessLauncher processes{childSearchPath(toolFolder, keptTools)};
  PosixFileManager files{{dataFolder() + "/quillmont/Library"}};
  XmlPropertyLists propertyLists;
  PropertyListDefaults defaults{configFolder() + "/quillmont", kBundleIdentifier, propertyLists,
                                log};
  // A second instance, which leaves, must not lay its own short-lived link over the first one's.
  LinuxWorkspace workspace{loop, log, [this] { keepLaunchControl(); }};

  void keepLaunchControl() const {
    if (!keptTools.empty()) keepTool(toolFolder + "/launchctl", keptTools);
  }
};

const Host* makeHost() {
  leaveStartFolder();
  endWithALogLineWithoutRoom();
  // Qt would wait for ever for a thread that it could not start.
  requireThreads(kThreads);
  setenv(kSeriesVariable, "1", 1);
  auto* const parts = new LinuxHost;
  return new Host{.processes = parts->processes,
                  .propertyLists = parts->propertyLists,
                  .defaults = parts->defaults,
                  .files = parts->files,
                  .bundle = parts->bundle,
                  .log = parts->log,
                  .mainRunLoop = parts->loop,
                  .queues = parts->queues,
                  .clock = parts->clock,
                  .workspace = parts->workspace,
                  .application = parts->application,
                  .desktop = parts->desktop,
                  .tools = toolPaths(parts->toolFolder),
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
