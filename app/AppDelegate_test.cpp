#include "app/AppDelegate.h"

#include <gmock/gmock.h>

#include "tests/support/TestHost.h"

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using testing::FakeDiskImages;
using ::testing::IsEmpty;
using testing::TestHost;

constexpr std::int32_t kOwnPid = 999;

class Launch : public ::testing::Test {
 protected:
  Launch() { system.application.setDelegate(&delegate); }

  ConfigManager& bringUpConfig() {
    if (!config) {
      config = std::make_unique<ConfigManager>(system.host());
      story.push_back("settings");
    }
    return *config;
  }

  QuillmontDaemon& bringUpDaemon() {
    if (!daemon) {
      daemon = QuillmontDaemon::make(system.host(), bringUpConfig());
      story.push_back("monitor");
    }
    return *daemon;
  }

  TestHost system;
  FakeDiskImages images{system};
  std::unique_ptr<ConfigManager> config;
  std::shared_ptr<QuillmontDaemon> daemon;
  std::vector<std::string> story;
  AppDelegate delegate{system.host(),
                       {[this]() -> ConfigManager& { return bringUpConfig(); },
                        [this]() -> QuillmontDaemon& { return bringUpDaemon(); }}};
};

TEST_F(Launch, SettingsComeBeforeTheMonitor) {
  system.workspace.running = {kOwnPid};
  delegate.applicationDidFinishLaunching();
  EXPECT_THAT(story, ElementsAre("settings", "monitor"));
  EXPECT_EQ(system.application.terminations, 0);
  EXPECT_THAT(system.log.lines, IsEmpty());
}

TEST_F(Launch, EmptyListOfRunningApplicationsIsNoOtherInstance) {
  delegate.applicationDidFinishLaunching();
  EXPECT_THAT(story, ElementsAre("settings", "monitor"));
}

TEST_F(Launch, AnotherInstanceEndsThisOneWithOneLogLine) {
  system.workspace.running = {kOwnPid, 42};
  delegate.applicationDidFinishLaunching();
  EXPECT_THAT(system.log.lines,
              ElementsAre("Another instance of Quillmont is already running. Exiting this "
                          "instance."));
  EXPECT_EQ(system.application.terminations, 1);
  EXPECT_THAT(story, ElementsAre("settings", "monitor"))
      << "made only by the termination handler, which asks for the monitor";
  EXPECT_EQ(system.queues.pendingTasks(), 1u) << "started ...";
  EXPECT_EQ(system.runLoop.scheduledTimers(), 0u) << "... and stopped again";
  EXPECT_THAT(system.clock.sleeps, IsEmpty());
}

TEST_F(Launch, LeavingInstanceBringsNothingUpByItself) {
  system.application.setDelegate(nullptr);
  system.workspace.running = {kOwnPid, 42};
  delegate.applicationDidFinishLaunching();
  EXPECT_EQ(system.application.terminations, 1);
  EXPECT_THAT(story, IsEmpty());
}

TEST_F(Launch, OtherInstanceIsFoundByIdentifierNotByPosition) {
  for (const std::int32_t other : {42, 1042}) {
    system.application.terminations = 0;
    system.workspace.running = {other, kOwnPid};
    delegate.applicationDidFinishLaunching();
    EXPECT_EQ(system.application.terminations, 1);
  }
}

TEST_F(Launch, InstancesAreLookedForUnderTheBundleIdentifier) {
  system.bundle.bundleIdentifier = "com.example.renamed";
  delegate.applicationDidFinishLaunching();
  EXPECT_THAT(system.workspace.askedFor, ElementsAre("com.example.renamed"));
}

TEST_F(Launch, BundleWithoutIdentifierUsesTheFixedOne) {
  system.bundle.bundleIdentifier = std::nullopt;
  delegate.applicationDidFinishLaunching();
  EXPECT_THAT(system.workspace.askedFor, ElementsAre("com.norwaldex.Quillmont"));
}

TEST_F(Launch, TerminationWaitsForAnEjectionThenStopsTheMonitor) {
  delegate.applicationDidFinishLaunching();
  system.processes.tools["/usr/bin/hdiutil"] = [&](const Command&) {
    delegate.applicationWillTerminate();
    return testing::ToolRun{.status = 1};
  };
  system.clock.onSleep = [&] { EXPECT_EQ(system.runLoop.scheduledTimers(), 2u); };
  daemon->eject("/Volumes/A", "A");
  EXPECT_EQ(system.clock.sleeps.size(), 30u);
  EXPECT_EQ(system.runLoop.scheduledTimers(), 0u);
}

}  // namespace
}  // namespace quillmont
