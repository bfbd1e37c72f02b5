#include <gmock/gmock.h>

#include "tests/support/MainViewTest.h"

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

class PanelMenu : public testing::MainViewTest {
 protected:
  void openMenu() {
    press("name=更多操作");
    ASSERT_THAT(mount.findAll("popover"), SizeIs(1));
  }

  bool isMenuOpen() { return !mount.findAll("popover").empty(); }
};

TEST_F(PanelMenu, GearMenuHangsFromItsButton) {
  show();
  openMenu();
  EXPECT_EQ(mount.picture(mount.find("popover")), R"view(rectangle windowBackground (0 0 140 66)
button name=退出应用 hover (0 0 140 32)
  group (0 0 140 32)
    rectangle clear (0 0 140 32)
    symbol power 13 primary (12 8 16 16)
    label "退出应用" 13 primary (36 8 52 16)
rectangle separator (0 32 140 1)
button name=彻底卸载并清理 hover (0 33 140 33)
  group (0 0 140 33)
    rectangle clear (0 0 140 33)
    symbol trash 13 red (12 8 16 17)
    label "彻底卸载并清理" 13 red (36 8 91 16)
)view");
  EXPECT_EQ(line("popover"), "popover at top (0 0 140 66)");
  EXPECT_EQ(mount.views.at(mount.find("popover")).parent, mount.find("name=更多操作"));
}

TEST_F(PanelMenu, GearButtonOpensAndClosesTheMenu) {
  show();
  openMenu();
  press("name=更多操作");
  EXPECT_FALSE(isMenuOpen());
}

TEST_F(PanelMenu, MenuThatIsDismissedFromOutsideIsClosed) {
  show();
  openMenu();
  panel.dismiss(mount.find("popover"));
  system.settle();
  EXPECT_FALSE(isMenuOpen());
  openMenu();
}

TEST_F(PanelMenu, QuitClosesTheMenuAndTerminates) {
  show();
  openMenu();
  press("name=退出应用");
  EXPECT_FALSE(isMenuOpen());
  EXPECT_EQ(system.application.terminations, 1);
}

TEST_F(PanelMenu, UninstallAsksFirst) {
  bool menuWasOpen = true;
  system.desktop.duringAlert = [&] {
    system.settle();
    menuWasOpen = isMenuOpen();
  };
  system.desktop.alertAnswer = 1001;
  show();
  openMenu();
  const auto launches = system.processes.launches.size();
  press("name=彻底卸载并清理");
  ASSERT_THAT(system.desktop.alerts, SizeIs(1));
  const auto& alert = system.desktop.alerts[0];
  EXPECT_EQ(alert.messageText, "确定要彻底卸载 Quillmont 吗？");
  EXPECT_EQ(alert.informativeText, "这将会退出应用、移除开机启动项并删除系统中的配置与日志。");
  EXPECT_EQ(alert.style, AlertStyle::warning);
  EXPECT_THAT(alert.buttonTitles, ElementsAre("确定卸载", "取消"));
  EXPECT_FALSE(menuWasOpen) << "the menu closes before the alert is shown";
  EXPECT_EQ(system.processes.launchesOf("/bin/bash").size(), 0u);
  EXPECT_EQ(system.processes.launches.size(), launches) << "取消 starts nothing";
  EXPECT_FALSE(isMenuOpen());
}

TEST_F(PanelMenu, OnlyTheFirstButtonUninstalls) {
  show();
  for (const std::int64_t answer : {std::int64_t{1001}, std::int64_t{0}, kAlertAborted}) {
    system.desktop.alertAnswer = answer;
    openMenu();
    press("name=彻底卸载并清理");
    EXPECT_THAT(system.processes.launchesOf("/bin/bash"), IsEmpty()) << answer;
  }
}

TEST_F(PanelMenu, UninstallStartsTheBundlesScriptAndNothingElse) {
  system.bundle.bundlePath = "/Applications/My Apps/Quillmont.app";
  system.files.folders.insert(system.bundle.bundlePath);
  system.processes.tools["/bin/bash"] = [](const Command&) { return testing::ToolRun{}; };
  show();
  openMenu();
  press("name=彻底卸载并清理");
  const auto scripts = system.processes.launchesOf("/bin/bash");
  ASSERT_THAT(scripts, SizeIs(1));
  EXPECT_THAT(scripts[0].arguments,
              ElementsAre("/Applications/My Apps/Quillmont.app/Contents/Resources/uninstall.sh"));
  EXPECT_EQ(system.application.terminations, 0) << "ending the program is the script's work";
  EXPECT_THAT(system.log.lines, Not(::testing::Contains(HasSubstr("uninstall"))));
}

TEST_F(PanelMenu, ScriptThatCannotBeStartedIsOneLogLine) {
  system.processes.tools["/bin/bash"] = [](const Command&) {
    return testing::ToolRun{.launchError = "Permission denied"};
  };
  show();
  openMenu();
  system.log.lines.clear();
  press("name=彻底卸载并清理");
  EXPECT_THAT(system.log.lines, ElementsAre("Failed to run uninstall script: Permission denied"));
  EXPECT_EQ(system.application.terminations, 0);
}

}  // namespace
}  // namespace quillmont
