#include "app/AppDelegate.h"

#include <gmock/gmock.h>

#include "tests/support/TestHost.h"

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using testing::FakeDesktop;
using testing::FakeDiskImages;
using testing::FakePopover;
using ::testing::IsEmpty;
using testing::TestHost;

constexpr std::int32_t kOwnPid = 999;

class Launch : public ::testing::Test {
 protected:
  Launch() { system.application.setDelegate(delegate.get()); }

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
  std::shared_ptr<AppDelegate> delegate =
      AppDelegate::make(system.host(), {[this]() -> ConfigManager& { return bringUpConfig(); },
                                        [this]() -> QuillmontDaemon& { return bringUpDaemon(); }});
};

TEST_F(Launch, SettingsComeBeforeTheMonitor) {
  system.workspace.running = {kOwnPid};
  delegate->applicationDidFinishLaunching();
  EXPECT_THAT(story, ElementsAre("settings", "monitor"));
  EXPECT_EQ(system.application.terminations, 0);
  EXPECT_THAT(system.log.lines, IsEmpty());
}

TEST_F(Launch, EmptyListOfRunningApplicationsIsNoOtherInstance) {
  delegate->applicationDidFinishLaunching();
  EXPECT_THAT(story, ElementsAre("settings", "monitor"));
}

TEST_F(Launch, AnotherInstanceEndsThisOneWithOneLogLine) {
  system.workspace.running = {kOwnPid, 42};
  delegate->applicationDidFinishLaunching();
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
  delegate->applicationDidFinishLaunching();
  EXPECT_EQ(system.application.terminations, 1);
  EXPECT_THAT(story, IsEmpty());
}

TEST_F(Launch, OtherInstanceIsFoundByIdentifierNotByPosition) {
  for (const std::int32_t other : {42, 1042}) {
    system.application.terminations = 0;
    system.workspace.running = {other, kOwnPid};
    delegate->applicationDidFinishLaunching();
    EXPECT_EQ(system.application.terminations, 1);
  }
}

TEST_F(Launch, InstancesAreLookedForUnderTheBundleIdentifier) {
  system.bundle.bundleIdentifier = "com.example.renamed";
  delegate->applicationDidFinishLaunching();
  EXPECT_THAT(system.workspace.askedFor, ElementsAre("com.example.renamed"));
}

TEST_F(Launch, BundleWithoutIdentifierUsesTheFixedOne) {
  system.bundle.bundleIdentifier = std::nullopt;
  delegate->applicationDidFinishLaunching();
  EXPECT_THAT(system.workspace.askedFor, ElementsAre("com.norwaldex.Quillmont"));
}

TEST_F(Launch, TerminationWaitsForAnEjectionThenStopsTheMonitor) {
  delegate->applicationDidFinishLaunching();
  system.processes.tools["/usr/bin/hdiutil"] = [&](const Command&) {
    delegate->applicationWillTerminate();
    return testing::ToolRun{.status = 1};
  };
  system.clock.onSleep = [&] { EXPECT_EQ(system.runLoop.scheduledTimers(), 2u); };
  daemon->eject("/Volumes/A", "A");
  EXPECT_EQ(system.clock.sleeps.size(), 30u);
  EXPECT_EQ(system.runLoop.scheduledTimers(), 0u);
}

TEST_F(Launch, TerminationFinishesTheCleanUpOfADeletedProgram) {
  delegate->applicationDidFinishLaunching();
  system.files.folders.clear();
  system.processes.tools["/bin/bash"] = [&](const Command&) {
    delegate->applicationWillTerminate();
    EXPECT_THAT(system.defaults.removedDomains, ElementsAre("com.norwaldex.Quillmont"));
    return testing::ToolRun{};
  };
  system.settle();
  EXPECT_EQ(system.processes.launchesOf("/bin/bash").size(), 1u);
}

/// After the launch, with an item in the status bar.
class StatusItemAndPanel : public Launch {
 protected:
  StatusItemAndPanel() {
    delegate->applicationDidFinishLaunching();
    desktop.story.clear();
  }

  FakeDesktop& desktop = system.desktop;
  FakePopover& popover = *system.desktop.popover;
};

TEST_F(Launch, PopoverIsThereAndEmptyBeforeTheLaunchHasFinished) {
  ASSERT_NE(system.desktop.popover, nullptr);
  EXPECT_EQ(system.desktop.popover->content, nullptr);
  EXPECT_EQ(delegate->statusItem(), nullptr);
  EXPECT_EQ(delegate->eventMonitor(), nullptr);
}

TEST_F(Launch, SecondInstanceMakesNoStatusItem) {
  system.workspace.running = {kOwnPid, 42};
  delegate->applicationDidFinishLaunching();
  EXPECT_THAT(system.desktop.lengths, IsEmpty());
  EXPECT_EQ(delegate->statusItem(), nullptr);
  EXPECT_EQ(delegate->eventMonitor(), nullptr);
  EXPECT_EQ(system.desktop.popover->content, nullptr);
}

TEST_F(StatusItemAndPanel, ItemIsAsWideAsItsSymbol) {
  EXPECT_THAT(desktop.lengths, ElementsAre(-1.0));
  EXPECT_EQ(desktop.button.symbol, "opticaldiscdrive.fill");
  EXPECT_EQ(desktop.button.accessibilityDescription, "Quillmont");
}

TEST_F(StatusItemAndPanel, PanelIsTransientAndHostsAView) {
  EXPECT_NE(popover.content, nullptr);
  EXPECT_EQ(popover.behavior, PopoverBehavior::transient);
  EXPECT_FALSE(popover.isShown());
}

TEST_F(StatusItemAndPanel, TwoClicksOpenAndCloseWithOneMonitor) {
  desktop.button.click();
  EXPECT_TRUE(popover.isShown());
  EXPECT_EQ(popover.anchor, &desktop.button);
  EXPECT_EQ(popover.edge, RectEdge::minY);
  desktop.button.click();
  EXPECT_FALSE(popover.isShown());
  EXPECT_EQ(popover.sender, &desktop.button) << "who was clicked is handed on";
  EXPECT_THAT(desktop.story,
              ElementsAre("popover shown", "monitor added", "popover closed", "monitor removed"));
}

TEST_F(StatusItemAndPanel, LeftAndRightClicksElsewhereClose) {
  for (const auto type : {EventType::leftMouseDown, EventType::rightMouseDown}) {
    desktop.button.click();
    ASSERT_TRUE(popover.isShown());
    desktop.clickElsewhere(type);
    EXPECT_FALSE(popover.isShown());
    EXPECT_THAT(desktop.monitors, IsEmpty());
  }
}

TEST_F(StatusItemAndPanel, MonitorAsksForLeftAndRightButtonsAlone) {
  desktop.button.click();
  ASSERT_EQ(desktop.monitors.size(), 1u);
  EXPECT_EQ(desktop.monitors.begin()->second.first, 10u);
  desktop.clickElsewhere(EventType::otherMouseDown);
  EXPECT_TRUE(popover.isShown());
}

TEST_F(StatusItemAndPanel, PanelThatTheToolkitClosedLeavesAMonitorThatDoesNoHarm) {
  desktop.button.click();
  popover.shown = false;
  desktop.clickElsewhere(EventType::leftMouseDown);
  EXPECT_THAT(desktop.story, ElementsAre("popover shown", "monitor added"));
  desktop.button.click();
  EXPECT_EQ(desktop.monitors.size(), 2u);
  desktop.clickElsewhere(EventType::leftMouseDown);
  EXPECT_FALSE(popover.isShown());
  EXPECT_EQ(desktop.monitors.size(), 1u) << "the first one is out of reach";
}

TEST_F(StatusItemAndPanel, SystemThatTellsNothingOfThePointerIsBorne) {
  desktop.hasPointer = false;
  desktop.button.click();
  desktop.button.click();
  EXPECT_THAT(desktop.story, ElementsAre("popover shown", "popover closed"));
}

TEST_F(StatusItemAndPanel, HandlerThatOutlivesTheDelegateDoesNothing) {
  desktop.button.click();
  popover.shown = false;
  desktop.button.click();
  auto orphan = desktop.monitors.begin()->second.second;
  auto action = desktop.button.action;
  system.application.setDelegate(nullptr);
  delegate.reset();
  const Event event{EventType::leftMouseDown};
  orphan(&event);
  action(nullptr);
  EXPECT_EQ(desktop.monitors.size(), 1u) << "a dropped monitor is removed";
}

TEST_F(Launch, StatusItemWithoutAButtonRunsOn) {
  system.desktop.buttonExists = false;
  delegate->applicationDidFinishLaunching();
  EXPECT_NE(delegate->statusItem(), nullptr);
  EXPECT_NE(system.desktop.popover->content, nullptr);
  delegate->togglePopover(nullptr);
  EXPECT_THAT(system.desktop.story, IsEmpty()) << "nothing is shown, nothing is watched";
}

TEST_F(Launch, DesktopWithoutAStatusBarRunsOn) {
  system.desktop.hasStatusBar = false;
  delegate->applicationDidFinishLaunching();
  delegate->togglePopover(nullptr);
  EXPECT_THAT(system.desktop.story, IsEmpty());
  EXPECT_THAT(system.log.lines, IsEmpty());
}

}  // namespace
}  // namespace quillmont
