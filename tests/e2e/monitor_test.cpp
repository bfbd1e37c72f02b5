// The monitor inside the test, on the real host and real disk images: what a user does while it
// runs.

#include <gmock/gmock.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <utility>

#include "platform/linux/EventLoop.h"
#include "platform/linux/LinuxWorkspace.h"
#include "platform/linux/PropertyListDefaults.h"
#include "platform/linux/XmlPropertyLists.h"
#include "platform/linux/background_thread.h"
#include "platform/posix/PosixFileManager.h"
#include "platform/posix/PosixProcessLauncher.h"
#include "platform/posix/SystemClock.h"
#include "platform/posix/ThreadQueue.h"
#include "tests/support/DiskImages.h"
#include "tests/support/Session.h"
#include "tests/support/SharedLog.h"
#include "tests/support/TestHost.h"

namespace quillmont::testing {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

class MonitorOnRealImages : public ::testing::Test {
 protected:
  void SetUp() override {
    if (const auto reason = DiskImages::whyImpossible(); !reason.empty()) GTEST_SKIP() << reason;
    session = std::make_unique<Session>();
    for (const auto& [name, value] : session->environment()) setenv(name.c_str(), value.c_str(), 1);
    images = std::make_unique<DiskImages>(session->environment());
    parts = std::make_unique<Parts>(*session);
  }

  /// A cycle under way, and its result on the way to the main thread, hold the monitor: what it
  /// stands on must not go before it.
  void TearDown() override {
    if (!parts) return;
    parts->monitor->stop();
    const std::weak_ptr<OpenMonitor> weak = std::exchange(parts->monitor, nullptr);
    EXPECT_TRUE(serveUntil([&] { return weak.expired(); }, 20s));
  }

  /// Everything that the monitor stands on.
  struct Parts {
    explicit Parts(const Session& session)
        : tools{.diskImageTool = session.tool("hdiutil"),
                .openFilesTool = session.tool("lsof"),
                .scriptRunner = session.tool("osascript")},
          files({session.folder() + "/Library"}),
          defaults(session.folder() + "/settings", kBundleIdentifier, propertyLists, log) {
      bundle.bundlePath = session.bundle();
      config.setExcludeList(session.foreignImages());
      monitor = QuillmontDaemon::make<OpenMonitor>(host(), config);
    }

    Host host() {
      return {.processes = processes,
              .propertyLists = propertyLists,
              .defaults = defaults,
              .files = files,
              .bundle = bundle,
              .log = log,
              .mainRunLoop = loop,
              .queues = queues,
              .clock = clock,
              .workspace = workspace,
              .application = application,
              .desktop = desktop,
              .tools = tools,
              .processIdentifier = getpid(),
              .userIdentifier = getuid()};
    }

    ToolPaths tools;
    SharedLog log;
    EventLoop loop;
    SystemClock clock;
    ThreadQueues queues{kBackgroundThread};
    FakeBundle bundle;
    PosixProcessLauncher processes{"/usr/sbin:/usr/bin:/sbin:/bin"};
    PosixFileManager files;
    XmlPropertyLists propertyLists;
    PropertyListDefaults defaults;
    LinuxWorkspace workspace{loop, log, [] {}};
    FakeApplication application;
    testing::FakeDesktop desktop;
    ConfigManager config{host()};
    std::shared_ptr<OpenMonitor> monitor;
  };

  OpenMonitor& monitor() { return *parts->monitor; }
  ConfigManager& config() { return parts->config; }

  /// Serves the main thread until `condition` holds; false after `limit`.
  template <class Condition>
  bool serveUntil(Condition condition, std::chrono::milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
      if (std::chrono::steady_clock::now() > end) return false;
      pollfd ready = {parts->loop.descriptor(), POLLIN, 0};
      poll(&ready, 1, 20);
      parts->loop.dispatchPending();
    }
    return true;
  }

  void serveFor(std::chrono::milliseconds duration) {
    serveUntil([] { return false; }, duration);
  }

  const DiskImage* card(const std::string& mountPoint) {
    for (const auto& entry : monitor().mountedImages()) {
      if (entry.mountPoint == mountPoint) return &entry;
    }
    return nullptr;
  }

  /// The presented mount point of a new image, whose path is left in `image`.
  std::string attach(const std::string& label) {
    image = images->makeExt4(label + ".img", label);
    const auto outcome = images->attach(image);
    EXPECT_EQ(outcome.status, 0) << outcome.standardError;
    return "/Volumes/" + label;
  }

  bool attached() { return !DiskImages::loopsOf(image).empty(); }

  std::unique_ptr<Session> session;
  std::unique_ptr<DiskImages> images;
  std::unique_ptr<Parts> parts;
  std::string image;
};

TEST_F(MonitorOnRealImages, SwitchedOnAgainEjectsAtTheNextSecond) {
  config().setIsEnabled(false);
  config().setTimeoutSeconds(1);
  const auto mountPoint = attach("Switch");
  ASSERT_TRUE(
      serveUntil([&] { return card(mountPoint) && card(mountPoint)->idleSeconds > 2; }, 8s));
  config().setIsEnabled(true);
  EXPECT_TRUE(serveUntil([&] { return !card(mountPoint); }, 1500ms));
  EXPECT_TRUE(serveUntil([&] { return !attached(); }, 3s));
}

TEST_F(MonitorOnRealImages, HeldImageThatIsEjectedKeepsItsCardWithTheHoldersName) {
  const auto mountPoint = attach("Held");
  Program holder({"tail", "-f", DiskImages::realPlace("Held") + "/note.txt"});
  ASSERT_TRUE(serveUntil([&] { return card(mountPoint) && card(mountPoint)->inUse; }, 8s));

  monitor().userForceEject(mountPoint, "Held");
  const auto warning =
      "Warning: hdiutil detach returned 0, but mount point is still attached "
      "(possible unmount-only state): " +
      mountPoint;
  EXPECT_TRUE(serveUntil(
      [&] {
        const auto lines = parts->log.lines();
        return std::find(lines.begin(), lines.end(), warning) != lines.end();
      },
      8s));
  serveFor(1s);  // the cycle that follows
  ASSERT_TRUE(card(mountPoint));
  EXPECT_THAT(card(mountPoint)->activeProcesses, ElementsAre("tail"));
  EXPECT_THAT(parts->log.lines(), Not(Contains(HasSubstr("Successfully"))));

  holder.signal(SIGKILL);
  holder.waitForExit(1s);
  EXPECT_TRUE(serveUntil([&] { return !card(mountPoint); }, 8s));
}

TEST_F(MonitorOnRealImages, IgnoredServicesAreNoUsersInAnyLetterCase) {
  const auto mountPoint = attach("Services");
  std::vector<std::unique_ptr<Program>> holders;
  const auto hold = [&](const std::string& name) {
    const auto program = session->folder() + "/" + name;
    fs::copy_file("/usr/bin/tail", program);
    holders.push_back(std::make_unique<Program>(
        std::vector<std::string>{program, "-f", DiskImages::realPlace("Services") + "/note.txt"}));
  };
  for (const auto* name : {"mds_stores", "DropBox", "ONEDRIVE", "hazelHelper", "cloudd"})
    hold(name);
  serveFor(6s);  // a whole cycle, at least
  ASSERT_TRUE(card(mountPoint));
  EXPECT_FALSE(card(mountPoint)->inUse);
  hold("MDWorker");
  EXPECT_TRUE(serveUntil([&] { return card(mountPoint) && card(mountPoint)->inUse; }, 6s));
  EXPECT_THAT(card(mountPoint)->activeProcesses, ElementsAre("MDWorker"));
}

TEST_F(MonitorOnRealImages, UserEjectsAnExcludedImage) {
  config().excludeImage(images->path() + "/Mine.img");
  const auto mountPoint = attach("Mine");
  ASSERT_TRUE(serveUntil([&] { return card(mountPoint) && card(mountPoint)->isExcluded; }, 8s));
  monitor().userForceEject(mountPoint, "Mine");
  EXPECT_TRUE(serveUntil([&] { return !card(mountPoint); }, 5s));
  EXPECT_FALSE(attached());
}

TEST_F(MonitorOnRealImages, ExclusionShowsAtTheNextCycle) {
  const auto mountPoint = attach("Later");
  ASSERT_TRUE(serveUntil([&] { return card(mountPoint) != nullptr; }, 8s));
  EXPECT_FALSE(card(mountPoint)->isExcluded);
  config().toggleExclude(image);
  EXPECT_TRUE(serveUntil([&] { return card(mountPoint)->isExcluded; }, 6s));
}

}  // namespace
}  // namespace quillmont::testing
