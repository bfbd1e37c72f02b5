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

/// With images that are only listed: as many, and of such names, as no machine has.
class PanelList : public PanelTest {
 protected:
  void list(const std::vector<std::string>& names) {
    PropertyListArray images;
    for (const auto& name : names) {
      images.push_back(PropertyListDictionary{
          {"image-path", "/images/" + name + ".dmg"},
          {"system-entities",
           PropertyListArray{PropertyListDictionary{{"dev-entry", "/dev/none"},
                                                    {"mount-point", "/Volumes/" + name}}}}});
    }
    startDesktop();
    std::ofstream(session->folder() + "/list")
        << *XmlPropertyLists().xml(PropertyListDictionary{{"images", images}});
    session->replaceTool("hdiutil",
                         "[ \"$1\" = info ] && exec cat '" + session->folder() + "/list'");
    // A hundred checks take their time where every tool is slow to start.
    session->replaceTool("lsof", "exit 1");
    start();
    openPanel();
  }

  ScreenRectangle titleOf(const std::string& name) {
    const auto title = lab->accessibility().find("label", name);
    return title ? title->rectangle : ScreenRectangle();
  }
};

TEST_F(PanelList, HundredCardsScrollToTheLastOne) {
  std::vector<std::string> names;
  for (int i = 1; i <= 100; ++i) names.push_back("Image " + std::to_string(i));
  list(names);
  const auto first = lab->control("label", "Image 1").rectangle;
  const auto header = lab->control("label", "Quillmont").rectangle;
  lab->move(first.centerX(), first.centerY());
  for (int i = 0; i < 150; ++i) {
    lab->press(5);
    lab->release(5);
  }
  const auto last = [&] { return titleOf("Image 100"); };
  EXPECT_TRUE(eventually([&] { return last().height > 0 && last().y < first.y + 200; }, 10s));
  EXPECT_EQ(titleOf("Quillmont"), header) << "the header stays";
}

TEST_F(PanelList, NameOf300CharactersStaysOnItsLine) {
  const std::string name(300, 'n');
  list({name, "Short"});
  const auto title = lab->control("label", name).rectangle;
  EXPECT_EQ(title.height, lab->control("label", "Short").rectangle.height);
  const auto panel = windowOfWidth(320, 400)->rectangle;
  EXPECT_LT(title.x + title.width, panel.x + panel.width - 80) << "beside the buttons";
}

}  // namespace
}  // namespace quillmont::testing
