// The monitor on a Mac's own parts, from the tools' output to the notification.

#import <AppKit/AppKit.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <functional>
#include <thread>
#include <utility>

#include "monitor/QuillmontDaemon.h"
#include "platform/macos/FoundationPropertyLists.h"
#include "platform/macos/MacBundle.h"
#include "platform/macos/MacWorkspace.h"
#include "platform/macos/MainRunLoop.h"
#include "platform/macos/StandardDefaults.h"
#include "platform/macos/background_thread.h"
#include "platform/macos/property_list_objects.h"
#include "platform/posix/PosixFileManager.h"
#include "platform/posix/PosixProcessLauncher.h"
#include "platform/posix/SystemClock.h"
#include "platform/posix/ThreadQueue.h"
#include "settings/ConfigManager.h"
#include "tests/macos/RecordedTools.h"
#include "tests/support/FakeDesktop.h"
#include "tests/support/FakeSystem.h"
#include "tests/support/SharedLog.h"

namespace quillmont::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr char kDesign[] = "/Volumes/设计稿 \"A\"";
constexpr char kBackup[] = "/Volumes/Backup 2";

/// The real time, in which sleeping is over at once.
class RestlessClock : public SystemClock {
 public:
  void sleep(std::chrono::microseconds) override { std::this_thread::yield(); }
};

constexpr char kTestDomain[] = "com.example.QuillmontTest";

/// The program's own domain would hold the settings of whoever runs this.
class TestDefaults : public StandardDefaults {
 public:
  explicit TestDefaults(Log& log) : StandardDefaults(kTestDomain, log) {}
  void removePersistentDomain(std::string_view domain) override {
    StandardDefaults::removePersistentDomain(domain == kBundleIdentifier ? kTestDomain : domain);
  }
};

/// Everything that needs no screen is a Mac's; the tools play recordings.
class WholeCycle : public ::testing::Test {
 protected:
  ~WholeCycle() override {
    end();
    defaults.removePersistentDomain(kBundleIdentifier);
  }

  /// Work that is under way still needs everything here.
  void end() {
    if (!monitor) return;
    monitor->stop();
    const std::weak_ptr<QuillmontDaemon> ending = std::exchange(monitor, nullptr);
    EXPECT_TRUE(serveUntil([&] { return ending.expired(); }));
  }

  Host host(Bundle& ofBundle, FileManager& ofFiles) {
    return {.processes = processes,
            .propertyLists = propertyLists,
            .defaults = defaults,
            .files = ofFiles,
            .bundle = ofBundle,
            .log = log,
            .mainRunLoop = loop,
            .queues = queues,
            .clock = clock,
            .workspace = workspace,
            .application = application,
            .desktop = desktop,
            .tools = tools.paths(),
            .processIdentifier = getpid(),
            .userIdentifier = 501};
  }
  Host host() { return host(bundle, files); }

  /// Lists what was recorded, in `format`; the first image goes with its detachment.
  void attach(NSPropertyListFormat format) {
    @autoreleasepool {
      const auto before = tools.recorded("attached_images.plist");
      auto list = *propertyLists.parse(before);
      tools.list(format == NSPropertyListXMLFormat_v1_0
                     ? before
                     : tools.recorded("attached_images.binary.plist"),
                 encoded(withoutFirstImage(std::move(list)), format));
    }
  }

  static PropertyList withoutFirstImage(const PropertyList& list) {
    auto entries = *list.dictionary();
    for (auto& [key, value] : entries) {
      if (key == "images")
        value = PropertyListArray(value.array()->begin() + 1, value.array()->end());
    }
    return entries;
  }

  static std::string encoded(const PropertyList& list, NSPropertyListFormat format) {
    NSData* const data = [NSPropertyListSerialization dataWithPropertyList:*objectOf(list)
                                                                    format:format
                                                                   options:0
                                                                     error:nullptr];
    return {static_cast<const char*>([data bytes]), [data length]};
  }

  void start() {
    config.setTimeoutSeconds(1e9);
    monitor = QuillmontDaemon::make(host(), config);
  }

  bool serveUntil(const std::function<bool()>& reached) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!reached()) {
      if (std::chrono::steady_clock::now() > end) return false;
      @autoreleasepool {
        [[NSRunLoop mainRunLoop] runMode:NSDefaultRunLoopMode
                              beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.02]];
      }
    }
    return true;
  }

  bool serveUntilListed(std::size_t count) {
    return serveUntil([&] { return monitor->mountedImages().size() == count; });
  }

  std::vector<RecordedTools::Call> detaches() const {
    auto calls = tools.calls("hdiutil");
    std::erase_if(calls, [](const auto& call) { return call.at(1) != "detach"; });
    return calls;
  }

  /// From the first look at the tools to the notification.
  void goThroughTheCycle();

  RecordedTools tools;
  TemporaryFolder home;
  SharedLog log;
  MainRunLoop loop;
  RestlessClock clock;
  ThreadQueues queues{kBackgroundThread};
  MacBundle bundle;
  PosixProcessLauncher processes{"/usr/bin:/bin:/usr/sbin:/sbin"};
  PosixFileManager files{{home.path() + "/Library"}};
  FoundationPropertyLists propertyLists;
  TestDefaults defaults{log};
  MacWorkspace workspace;
  FakeApplication application;
  FakeDesktop desktop;
  ConfigManager config{host()};
  std::shared_ptr<QuillmontDaemon> monitor;
};

void WholeCycle::goThroughTheCycle() {
  start();
  ASSERT_TRUE(serveUntilListed(2));
  const auto& design = monitor->mountedImages()[0];
  EXPECT_EQ(design.imagePath, "/Users/user/Downloads/设计稿 & 图标.dmg");
  EXPECT_EQ(design.mountPoint, kDesign);
  EXPECT_EQ(design.volumeName, "设计稿 \"A\"");
  EXPECT_FALSE(design.inUse) << "the indexing service is no user";
  const auto& backup = monitor->mountedImages()[1];
  EXPECT_EQ(backup.imagePath, "/Users/user/Backup.sparseimage");
  EXPECT_EQ(backup.volumeName, "Backup 2");
  EXPECT_TRUE(backup.inUse);
  EXPECT_THAT(backup.activeProcesses, ElementsAre("TextEdit", "bash"));
  EXPECT_THAT(tools.calls("hdiutil"), Contains(RecordedTools::Call{"hdiutil", "info", "-plist"}));
  EXPECT_THAT(tools.calls("lsof"), Contains(RecordedTools::Call{"lsof", "-F", "cpn", kDesign}));

  EXPECT_TRUE(serveUntil([&] { return monitor->mountedImages()[0].idleSeconds > 0.0; }));
  EXPECT_THAT(detaches(), IsEmpty());
  config.setTimeoutSeconds(0);
  ASSERT_TRUE(serveUntil([&] { return !tools.calls("osascript").empty(); }))
      << ::testing::PrintToString(log.lines()) << ::testing::PrintToString(tools.calls("hdiutil"));
  EXPECT_THAT(detaches(), ElementsAre(RecordedTools::Call{"hdiutil", "detach", kDesign, "-force"}));
  EXPECT_THAT(tools.calls("osascript"),
              ElementsAre(RecordedTools::Call{
                  "osascript", "-e",
                  "display notification \"DMG 映像 \\\"设计稿 \\\"A\\\"\\\" 因空闲已自动推出。\" "
                  "with title \"磁盘已安全推出\" sound name \"default\""}));
  EXPECT_THAT(log.lines(),
              Contains(std::string("Successfully ejected and verified detached: ") + kDesign));
  ASSERT_TRUE(serveUntilListed(1)) << "the one in use stays";
  EXPECT_EQ(monitor->mountedImages()[0].mountPoint, kBackup);
}

TEST_F(WholeCycle, EjectsWhatIsIdleFromAListInXml) {
  attach(NSPropertyListXMLFormat_v1_0);
  goThroughTheCycle();
}

TEST_F(WholeCycle, EjectsWhatIsIdleFromAListInTheBinaryEncoding) {
  attach(NSPropertyListBinaryFormat_v1_0);
  goThroughTheCycle();
}

TEST_F(WholeCycle, LooksAgainWhenAVolumeComesOrGoes) {
  attach(NSPropertyListXMLFormat_v1_0);
  start();
  ASSERT_TRUE(serveUntilListed(2));
  tools.list(tools.recorded("attached_images.binary.plist"), "");
  for (NSString* name : {NSWorkspaceDidMountNotification, NSWorkspaceDidUnmountNotification}) {
    const auto looks = tools.calls("hdiutil").size();
    [[[NSWorkspace sharedWorkspace] notificationCenter] postNotificationName:name object:nil];
    EXPECT_TRUE(serveUntil([&] { return tools.calls("hdiutil").size() > looks; }));
  }
}

TEST_F(WholeCycle, AListThatIsCutShortIsLoggedAndShowsNothing) {
  const auto list = tools.recorded("attached_images.binary.plist");
  tools.list(list.substr(0, list.size() / 2), "");
  start();
  EXPECT_TRUE(serveUntil([&] { return !log.lines().empty(); }));
  EXPECT_TRUE(log.lines().front().starts_with("Error scanning mounted images: "))
      << log.lines().front();
  EXPECT_THAT(monitor->mountedImages(), IsEmpty());
}

TEST_F(WholeCycle, TheLoginItemIsAFileOfFourKeysAndALineForTheServiceManager) {
  config.setLaunchAtLogin(true);
  const auto agents = home.path() + "/Library/LaunchAgents";
  const auto path = agents + "/com.norwaldex.quillmont.plist";
  @autoreleasepool {
    NSDictionary* const agent =
        [NSDictionary dictionaryWithContentsOfFile:[NSString stringWithUTF8String:path.c_str()]];
    ASSERT_TRUE(agent != nil);
    EXPECT_EQ(*propertyListOf(agent),
              PropertyList(PropertyListDictionary{
                  {"KeepAlive", false},
                  {"Label", "com.norwaldex.quillmont"},
                  {"ProgramArguments", PropertyListArray{*bundle.executablePath()}},
                  {"RunAtLoad", true}}));
  }
  config.setLaunchAtLogin(false);
  EXPECT_FALSE(files.exists(path));
  EXPECT_THAT(
      tools.calls("bash"),
      ElementsAre(
          RecordedTools::Call{"bash", "-c",
                              "launchctl bootstrap gui/501 " + path +
                                  " 2>/dev/null || launchctl load " + path + " 2>/dev/null"},
          RecordedTools::Call{"bash", "-c",
                              "launchctl bootout gui/501 " + path +
                                  " 2>/dev/null || launchctl unload " + path + " 2>/dev/null"}));
}

TEST_F(WholeCycle, TheServiceManagersLineOfAUserIsExact) {
  FakeFiles userFiles;
  ConfigManager users(host(bundle, userFiles));
  users.setLaunchAtLogin(true);
  EXPECT_THAT(tools.calls("bash"),
              ElementsAre(RecordedTools::Call{
                  "bash", "-c",
                  "launchctl bootstrap gui/501 "
                  "/Users/user/Library/LaunchAgents/com.norwaldex.quillmont.plist 2>/dev/null || "
                  "launchctl load /Users/user/Library/LaunchAgents/com.norwaldex.quillmont.plist "
                  "2>/dev/null"}));
}

TEST_F(WholeCycle, AProgramInTheTrashTakesItsLoginItemAndItsSettingsAlong) {
  config.setLaunchAtLogin(true);
  ASSERT_EQ(defaults.object("com.norwaldex.quillmont.launchAtLogin"), PropertyList(true));
  FakeBundle trashed;
  trashed.bundlePath = home.path() + "/.Trash/Quillmont.app";
  ConfigManager running(host(trashed, files));
  monitor = QuillmontDaemon::make(host(trashed, files), running);
  ASSERT_TRUE(serveUntil([&] { return application.terminations > 0; }));
  EXPECT_EQ(defaults.object("com.norwaldex.quillmont.launchAtLogin"), std::nullopt);
  EXPECT_FALSE(files.exists(home.path() + "/Library/LaunchAgents/com.norwaldex.quillmont.plist"));
  EXPECT_THAT(tools.calls("bash"), SizeIs(2));
  end();
}

}  // namespace
}  // namespace quillmont::testing
