// A whole host in memory, and a Mac's disk images on it.
#pragma once

#include <string>
#include <vector>

#include "monitor/QuillmontDaemon.h"
#include "platform/Host.h"
#include "settings/ConfigManager.h"
#include "tests/support/FakeDesktop.h"
#include "tests/support/FakeSystem.h"
#include "tests/support/ManualTime.h"

namespace quillmont::testing {

/// Every part of a host as a fake with public knobs; starts with the program installed.
struct TestHost {
  TestHost() { files.folders.insert(bundle.bundlePath); }

  Host host() {
    return {.processes = processes,
            .propertyLists = propertyLists,
            .defaults = defaults,
            .files = files,
            .bundle = bundle,
            .log = log,
            .mainRunLoop = runLoop,
            .queues = queues,
            .clock = clock,
            .workspace = workspace,
            .application = application,
            .desktop = desktop,
            .tools = {},
            .processIdentifier = 999,
            .userIdentifier = 501};
  }

  /// Lets the queue and the main thread do all they have to do now.
  void settle() {
    while (queues.pendingTasks() > 0 || runLoop.pendingTasks() > 0) {
      queues.runTasks();
      runLoop.runTasks();
    }
  }

  /// `count` seconds pass, a tenth at a time, with everything settled after each.
  void pass(double count) {
    for (int tenth = 0; tenth < static_cast<int>(count * 10 + 0.5); ++tenth) {
      runLoop.advance(std::chrono::milliseconds(100));
      settle();
    }
  }

  ManualClock clock;
  ManualRunLoop runLoop{clock};
  ManualQueues queues;
  FakeProcesses processes;
  TicketPropertyLists propertyLists;
  MemoryDefaults defaults;
  FakeFiles files;
  FakeBundle bundle;
  RecordingLog log;
  FakeWorkspace workspace;
  FakeApplication application;
  FakeDesktop desktop;
};

/// Attached images behind the disk-image tool and the open-files tool of a test host. Detaching
/// works unless a test says otherwise.
class FakeDiskImages {
 public:
  struct Image {
    std::string imagePath;
    std::string mountPoint;
    std::string devEntry;
    std::vector<std::string> users = {};  ///< command names of processes with open files
    int userPid = 101;                    ///< of the first one; the others follow it
  };

  explicit FakeDiskImages(TestHost& host);

  /// Attaches an image mounted at /Volumes/<name> now, with a device node of this time.
  Image& attach(const std::string& name);
  Image& image(const std::string& name);
  void removeImage(const std::string& mountPoint);

  std::vector<Image> attached;
  int detachStatus = 0;
  bool detachReally = true;  ///< false: the tool says success, and nothing goes
  int scans = 0;

 private:
  ToolRun diskImageTool(const Command& command);
  ToolRun openFilesTool(const Command& command);
  PropertyList list() const;

  TestHost& host_;
  int nodes_ = 0;
};

/// The monitor with its inner operations in the open.
class OpenMonitor : public QuillmontDaemon {
 public:
  OpenMonitor(const Host& host, ConfigManager& config) : QuillmontDaemon(host, config) {}
  using QuillmontDaemon::checkInUse;
  using QuillmontDaemon::getMountTime;
  using QuillmontDaemon::scanMountedImages;
  using QuillmontDaemon::tick;
  using QuillmontDaemon::updateIdleTimesAndCheckTimeout;
};

}  // namespace quillmont::testing
