// The whole program on a desktop, used with a pointer.
#import <AppKit/AppKit.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/macos/strings.h"
#include "tests/gnustep/RunningProgram.h"
#include "tests/gnustep/screen.h"

namespace quillmont::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

constexpr std::chrono::seconds kPatience(10);

class ProgramTest : public ::testing::Test {
 protected:
  bool isThere(const ViewTest& test) {
    return program.ask([&] { return viewOnScreen(test) != nil; });
  }
  bool comes(const ViewTest& test) {
    return program.eventually([&] { return viewOnScreen(test) != nil; });
  }
  bool goes(const ViewTest& test) {
    return program.eventually([&] { return viewOnScreen(test) == nil; });
  }
  Place place(const ViewTest& test, int part = 0, int parts = 1) {
    if (!comes(test)) ADD_FAILURE() << "it is not on the screen";
    return program.ask([&] {
      NSView* const view = viewOnScreen(test);
      return view != nil ? placeOf(view, part, parts) : Place();
    });
  }
  void clickOn(const ViewTest& test, int part = 0, int parts = 1) {
    click(place(test, part, parts));
  }
  void openPanel() {
    clickOn(isStatusButton());
    ASSERT_TRUE(comes(kPanel));
  }

  /// As the system does when it mounts an image.
  void attach(const std::string& name) {
    program.tools().attach(name);
    tellOfMount();
  }
  void tellOfMount() {
    program.ask([] {
      NSWorkspace* const workspace = [NSWorkspace sharedWorkspace];
      [[workspace notificationCenter] postNotificationName:NSWorkspaceDidMountNotification
                                                    object:workspace];
    });
  }
  /// What the system's store has under the key; the text of it, empty without any.
  std::string stored(const std::string& key) {
    return program.ask([&key] {
      NSUserDefaults* const defaults = [NSUserDefaults standardUserDefaults];
      [defaults synchronize];
      id const value = [defaults objectForKey:foundationString("com.norwaldex.quillmont." + key)];
      const bool isArray = [value isKindOfClass:[NSArray class]];
      return utf8String(isArray ? [value componentsJoinedByString:@"|"] : [value description]);
    });
  }

  void display() {
    program.ask([] {
      for (NSWindow* window in [NSApp windows]) [window displayIfNeeded];
    });
  }
  void picture(const std::string& name) {
    display();
    takePicture(name);
  }
  bool isLight(Place place) {
    display();
    return greenAt(place) > 127;
  }
  bool becomesLight(Place place, bool light) {
    return testing::eventually([&] { return isLight(place) == light; }, kPatience);
  }
  /// With the keyboard's focus where a window manager would put it.
  void press(const std::string& key) {
    testing::press(key, program.ask([] { return displayWindow([NSApp keyWindow]); }));
  }

  const ViewTest kPanel = showsText("空闲退出超时时间");
  RunningProgram& program = RunningProgram::current();
};

TEST_F(ProgramTest, AClickOnTheStatusItemOpensThePanelAndAnotherClosesIt) {
  EXPECT_TRUE(comes(isStatusButton()));
  EXPECT_FALSE(isThere(kPanel));
  openPanel();
  EXPECT_TRUE(isThere(showsText("暂无挂载的 DMG 镜像")));
  EXPECT_EQ(program.ask([] { return globalMonitors(); }), 1U);
  picture("empty");
  clickOn(isStatusButton());
  EXPECT_TRUE(goes(kPanel));
  openPanel();
}

TEST_F(ProgramTest, APressInAnotherProgramClosesThePanel) {
  openPanel();
  program.ask([] { pressElsewhere(NSEventTypeOtherMouseDown); });
  EXPECT_TRUE(isThere(kPanel));
  program.ask([] { pressElsewhere(NSEventTypeRightMouseDown); });
  EXPECT_FALSE(isThere(kPanel));
  EXPECT_EQ(program.ask([] { return globalMonitors(); }), 0U);
}

TEST_F(ProgramTest, EscapeClosesThePanel) {
  openPanel();
  press("Escape");
  EXPECT_TRUE(goes(kPanel));
  openPanel();
}

TEST_F(ProgramTest, ACardComesWithItsImageAndGoesWithIt) {
  openPanel();
  attach("Design");
  EXPECT_TRUE(comes(showsText("Design")));
  EXPECT_FALSE(isThere(showsText("暂无挂载的 DMG 镜像")));
  program.tools().use("Fonts", "Preview");
  attach("Fonts");
  EXPECT_TRUE(comes(showsText("活跃中 (Preview)")));
  picture("cards");
  clickOn(hasHelp("立即安全推出"));
  EXPECT_TRUE(goes(showsText("Fonts"))) << "the last card's button is in front";
  EXPECT_TRUE(isThere(showsText("Design")));
  EXPECT_THAT(program.tools().calls(), HasSubstr("hdiutil detach /Volumes/Fonts -force\n"));
  EXPECT_TRUE(program.eventually(
      [this] { return program.tools().calls().find("osascript -e") != std::string::npos; }));
}

TEST_F(ProgramTest, TheLockKeepsAnImage) {
  openPanel();
  attach("Design");
  clickOn(hasHelp("防止自动推出"));
  EXPECT_TRUE(program.eventually([this] { return !program.config().excludeList().empty(); }));
  tellOfMount();
  EXPECT_TRUE(comes(hasHelp("允许自动推出")));
  picture("locked");
  EXPECT_EQ(stored("excludeList"), "/Users/user/Design.dmg");
}

TEST_F(ProgramTest, ControlsWriteTheSettings) {
  openPanel();
  clickOn(hasHelp("监控已启用"));
  EXPECT_TRUE(comes(hasHelp("监控已禁用")));
  clickOn(isSegmented(), 3, 5);
  EXPECT_TRUE(comes(showsText("30 分钟")));
  clickOn(hasTitle("开机自动启动"));
  EXPECT_TRUE(program.eventually([this] { return program.config().launchAtLogin(); }));
  picture("settings");
  EXPECT_EQ(stored("isEnabled"), "0");
  EXPECT_EQ(stored("timeoutSeconds"), "1800");
  EXPECT_EQ(stored("launchAtLogin"), "1");
  EXPECT_THAT(program.tools().calls(), HasSubstr("launchctl"));
}

TEST_F(ProgramTest, TheEjectButtonShowsThePointer) {
  openPanel();
  attach("Design");
  const auto eject = place(hasHelp("立即安全推出"));
  const Place edge = {eject.x - 9, eject.y};
  EXPECT_TRUE(becomesLight(edge, true));
  movePointer(eject);
  EXPECT_TRUE(becomesLight(edge, false)) << "it is red all over";
  picture("hover");
  movePointer({0, 0});
  EXPECT_TRUE(becomesLight(edge, true));
}

TEST_F(ProgramTest, ThePanelFollowsTheDesktopIntoTheDark) {
  openPanel();
  attach("Design");
  const auto title = place(showsText("Quillmont"));
  const Place ground = {title.x + 80, title.y};
  EXPECT_TRUE(becomesLight(ground, true));
  program.ask([this] {
    NSWindow* const window = [viewOnScreen(kPanel) window];
    [window setAppearance:[NSAppearance appearanceNamed:NSAppearanceNameDarkAqua]];
  });
  EXPECT_TRUE(becomesLight(ground, false));
  picture("dark");
}

TEST_F(ProgramTest, TheGearMenuOpensAndAClickBesideItCloses) {
  openPanel();
  clickOn(hasLabel("更多操作"));
  EXPECT_TRUE(comes(showsText("退出应用")));
  picture("menu");
  clickOn(showsText("Quillmont"));
  EXPECT_TRUE(goes(showsText("退出应用")));
  EXPECT_TRUE(isThere(kPanel));
  clickOn(hasLabel("更多操作"));
  EXPECT_TRUE(comes(showsText("退出应用")));
  clickOn(isStatusButton());
  EXPECT_TRUE(goes(kPanel));
  EXPECT_TRUE(goes(showsText("退出应用")));
}

TEST_F(ProgramTest, UninstallsOnlyWhenTheAlertsFirstButtonSaysSo) {
  for (const std::string answer : {"取消", "确定卸载"}) {
    openPanel();
    clickOn(hasLabel("更多操作"));
    clickOn(showsText("彻底卸载并清理"));
    ASSERT_TRUE(comes(hasTitle(answer)));
    picture("alert");
    clickOn(hasTitle(answer));
    ASSERT_TRUE(goes(hasTitle(answer)));
    if (answer == "取消") {
      EXPECT_THAT(program.tools().calls(), Not(HasSubstr("uninstall.sh")));
      if (isThere(kPanel)) clickOn(isStatusButton());
      EXPECT_TRUE(goes(kPanel));
    }
  }
  EXPECT_TRUE(program.eventually(
      [this] { return program.tools().calls().find("uninstall.sh") != std::string::npos; }));
}

TEST_F(ProgramTest, EndsFromTheGearMenu) {
  openPanel();
  clickOn(hasLabel("更多操作"));
  const auto quit = place(showsText("退出应用"));
  program.expectEnd();
  click(quit);
  program.eventually([] { return false; });
  ADD_FAILURE() << "the program goes on";
}

TEST_F(ProgramTest, EndsOnASignal) {
  openPanel();
  program.expectEnd();
  kill(getpid(), SIGTERM);
  program.eventually([] { return false; });
  ADD_FAILURE() << "the program goes on";
}

}  // namespace
}  // namespace quillmont::testing
