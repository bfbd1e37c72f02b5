// The settings on the panel, its gear menu, and the keyboard.

#include <filesystem>
#include <fstream>

#include "tests/e2e/PanelTest.h"

namespace quillmont::testing {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr char kAlertText[] = "确定要彻底卸载 Quillmont 吗？";

class PanelControls : public PanelTest {
 protected:
  bool isStored(const std::string& key, const PropertyList& value) {
    return eventually([&] { return stored(key) == value; }, 5s);
  }

  void openGearMenu() {
    lab->click(lab->control("push button", "更多操作"));
    lab->control("push button", "彻底卸载并清理");
  }

  /// A script that says how it was started, in place of the real one.
  void replaceUninstallScript() {
    const auto script = session->bundle() + "/Contents/Resources/uninstall.sh";
    fs::remove(script);
    std::ofstream(script) << "echo \"$#:$0\" >'" << marker() << "'\n";
  }
  std::string marker() const { return session->folder() + "/uninstalled"; }
};

TEST_F(PanelControls, SwitchWritesTheStoreAndChangesItsTooltip) {
  start();
  openPanel();
  ASSERT_TRUE(theSwitch().is("checked"));
  lab->click(theSwitch());
  EXPECT_TRUE(isStored("isEnabled", false));
  EXPECT_TRUE(isSeen("check box", "监控已禁用"));
  EXPECT_FALSE(theSwitch().is("checked"));
  lab->click(theSwitch());
  EXPECT_TRUE(isStored("isEnabled", true));
  EXPECT_TRUE(isSeen("check box", "监控已启用"));
}

TEST_F(PanelControls, SegmentsWriteTheTimeout) {
  start();
  openPanel();
  EXPECT_TRUE(lab->control("radio button", "15分").is("checked"));
  lab->click(lab->control("radio button", "1小时"));
  EXPECT_TRUE(isStored("timeoutSeconds", 3600.0));
  EXPECT_TRUE(isSeen("label", "1 小时"));
  EXPECT_TRUE(lab->control("radio button", "1小时").is("checked"));
  EXPECT_FALSE(lab->control("radio button", "15分").is("checked"));
}

TEST_F(PanelControls, Stored45SecondsShowTheirLabelAndNoSelectedSegment) {
  startDesktop();
  session->store({{"timeoutSeconds", 45.0}});
  start();
  openPanel();
  EXPECT_TRUE(isSeen("label", "45 秒"));
  for (const char* segment : {"1分", "5分", "15分", "30分", "1小时"}) {
    EXPECT_FALSE(lab->control("radio button", segment).is("checked")) << segment;
  }
}

TEST_F(PanelControls, CheckboxWritesLaunchAtLoginAndTheLoginItem) {
  start();
  openPanel();
  lab->click(lab->control("check box", "开机自动启动"));
  EXPECT_TRUE(isStored("launchAtLogin", true));
  EXPECT_TRUE(eventually([this] { return fs::exists(session->loginItem()); }, 10s));
  lab->click(lab->control("check box", "开机自动启动"));
  EXPECT_TRUE(isStored("launchAtLogin", false));
  EXPECT_TRUE(eventually([this] { return !fs::exists(session->loginItem()); }, 10s));
}

TEST_F(PanelControls, KeyboardReachesTheControlsAndSpacePressesThem) {
  start();
  openPanel();
  bool reached = false;
  for (int i = 0; i < 12 && !reached; ++i) {
    lab->key("Tab");
    reached = eventually([this] { return theSwitch().is("focused"); }, 300ms);
  }
  ASSERT_TRUE(reached) << lab->accessibility().picture();
  lab->key("space");
  EXPECT_TRUE(isStored("isEnabled", false));
}

TEST_F(PanelControls, GearButtonOpensAndClosesItsMenu) {
  start();
  openPanel();
  openGearMenu();
  lab->click(lab->control("push button", "更多操作"));
  EXPECT_TRUE(lab->waitUntilGone("push button", "退出应用"));
  EXPECT_TRUE(panelStays());
  openGearMenu();
  lab->click(lab->control("label", "Quillmont"));
  EXPECT_TRUE(lab->waitUntilGone("push button", "退出应用")) << "a click beside it dismisses it";
  EXPECT_TRUE(panelStays());
}

TEST_F(PanelControls, ClickElsewhereClosesMenuAndPanel) {
  start();
  openPanel();
  openGearMenu();
  lab->click(100, 600);
  EXPECT_TRUE(panelCloses());
  EXPECT_TRUE(lab->waitUntilGone("push button", "退出应用"));
  openPanel();
  EXPECT_EQ(count("push button", "退出应用"), 0) << "the menu does not come back by itself";
}

TEST_F(PanelControls, QuitEndsTheProgram) {
  start();
  openPanel();
  openGearMenu();
  lab->click(lab->control("push button", "退出应用"));
  EXPECT_EQ(program->waitForExit(10s), 0) << program->output();
}

TEST_F(PanelControls, UninstallAnsweredWithCancelStartsNothing) {
  startDesktop();
  replaceUninstallScript();
  start();
  openPanel();
  openGearMenu();
  lab->click(lab->control("push button", "彻底卸载并清理"));
  EXPECT_TRUE(isSeen("label", kAlertText));
  EXPECT_TRUE(isSeen("label", "这将会退出应用、移除开机启动项并删除系统中的配置与日志。"));
  EXPECT_EQ(count("push button", "退出应用"), 0) << "the menu closed before the alert came";
  lab->click(lab->control("push button", "取消"));
  EXPECT_TRUE(lab->waitUntilGone("label", kAlertText));
  EXPECT_FALSE(eventually([this] { return fs::exists(marker()); }, 700ms));
  EXPECT_TRUE(program->running());
}

TEST_F(PanelControls, UninstallAnsweredWithTheFirstButtonStartsTheScriptWithOneArgument) {
  startDesktop();
  replaceUninstallScript();
  start();
  openPanel();
  openGearMenu();
  lab->click(lab->control("push button", "彻底卸载并清理"));
  lab->click(lab->control("push button", "确定卸载"));
  const auto said = [this] {
    const auto text = readFile(marker());
    return text ? *text : "";
  };
  ASSERT_TRUE(eventually([&] { return said().ends_with("\n"); }, 5s));
  EXPECT_EQ(said(), "0:" + session->bundle() + "/Contents/Resources/uninstall.sh\n");
  EXPECT_TRUE(program->running()) << "ending it is the script's work";
}

TEST_F(PanelControls, AlertThatIsOpenDoesNotKeepTheProgramFromEnding) {
  startDesktop();
  replaceUninstallScript();
  start();
  openPanel();
  openGearMenu();
  lab->click(lab->control("push button", "彻底卸载并清理"));
  lab->control("push button", "确定卸载");
  program->signal(SIGTERM);
  EXPECT_EQ(program->waitForExit(10s), 0);
  EXPECT_FALSE(fs::exists(marker()));
}

TEST_F(PanelControls, EscapeInTheAlertIsANo) {
  startDesktop();
  replaceUninstallScript();
  start();
  openPanel();
  openGearMenu();
  lab->click(lab->control("push button", "彻底卸载并清理"));
  lab->control("push button", "确定卸载");
  lab->key("Escape");
  EXPECT_TRUE(lab->waitUntilGone("label", kAlertText));
  EXPECT_FALSE(eventually([this] { return fs::exists(marker()); }, 700ms));
}

}  // namespace
}  // namespace quillmont::testing
