#include "ui/MainView.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

#include "tests/support/MainViewTest.h"

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;
using Panel = testing::MainViewTest;

TEST_F(Panel, WithoutImages) {
  show();
  EXPECT_EQ(mount.size, (Size{320, 345}));
  EXPECT_EQ(mount.picture(), R"view(symbol opticaldiscdrive.fill 16 cyan (16 13 20 20)
label "Quillmont" 13 bold primary (44 15 59 16)
switch on cyan help=监控已启用 (266 12 38 22)
rectangle primary*0.1 (0 46 320 1)
rectangle separator (0 46 320 1)
rectangle primary*0.02 (0 47 320 200)
symbol opticaldiscdrive 40 secondary*0.5 (135 87 50 50)
label "暂无挂载的 DMG 镜像" 11 secondary (108 149 105 14)
label "挂载 DMG 后，空闲超时会自动推出" 10 secondary*0.6 centred (83 175 155 13)
rectangle primary*0.1 (0 247 320 1)
rectangle separator (0 247 320 1)
rectangle primary*0.01 (0 248 320 97)
label "空闲退出超时时间" 10 medium secondary (12 260 80 13)
label "15 分钟" 10 bold cyan (273 260 35 13)
segments 1分 5分 [15分] 30分 1小时 name=空闲退出超时时间 (12 279 250 24)
checkbox off "开机自动启动" 10 secondary (12 317 80 14)
button name=更多操作 (291 315 17 18)
  symbol gearshape.fill 14 secondary (0 0 17 18)
)view");
}

TEST_F(Panel, WithCardsInTheOrderOfTheList) {
  images.attach("Alpha");
  images.attach("Beta").users = {"Finder", "Preview"};
  system.settle();
  show();
  EXPECT_EQ(mount.size, (Size{320, 345})) << "the area's height is that of the empty one";
  const auto list = mount.find("scroll of 320x128");
  EXPECT_EQ(mount.views.at(list).frame, (Rect{0, 47, 320, 200}));
  EXPECT_EQ(mount.picture(list),
            R"view(rounded(8) controlBackground*0.8 shadow black*0.05 2 0,1 (12 12 296 47)
symbol opticaldiscdrive.fill 24 cyan (20 21 30 30)
label "Alpha" 13 semibold primary lines=1 (60 20 33 16)
circle orange (60 42 6 6)
label "已空闲 00:00" 10 secondary (70 38 60 13)
button help=防止自动推出 hover (246 24 24 24)
  rounded(6) clear (0 0 24 24)
  symbol lock.open.fill 11 secondary*0.8 (5 5 14 13)
button help=立即安全推出 hover (276 24 24 24)
  rounded(6) red*0.1 (0 0 24 24)
  symbol eject.fill 11 red (5 5 14 13)
rounded(8) stroke primary*0.05 1 (12 12 296 47)
rounded(8) controlBackground*0.8 shadow black*0.05 2 0,1 (12 69 296 47)
symbol opticaldiscdrive.fill 24 green (20 78 30 30)
label "Beta" 13 semibold primary lines=1 (60 77 26 16)
circle green (60 99 6 6)
label "活跃中 (Finder, Preview)" 10 secondary lines=1 (70 95 120 13)
button help=防止自动推出 hover (246 81 24 24)
  rounded(6) clear (0 0 24 24)
  symbol lock.open.fill 11 secondary*0.8 (5 5 14 13)
button help=立即安全推出 hover (276 81 24 24)
  rounded(6) red*0.1 (0 0 24 24)
  symbol eject.fill 11 red (5 5 14 13)
rounded(8) stroke primary*0.05 1 (12 69 296 47)
)view");
}

TEST_F(Panel, FirstImageTakesThePlaceOfTheEmptyState) {
  show();
  EXPECT_THAT(mount.findAll("scroll"), IsEmpty());
  images.attach("Alpha");
  system.pass(5);
  EXPECT_THAT(mount.findAll("暂无挂载"), IsEmpty());
  EXPECT_EQ(mount.views.at(mount.find("scroll")).frame.height, 200);
  images.removeImage("/Volumes/Alpha");
  system.pass(5);
  EXPECT_THAT(mount.findAll("暂无挂载"), SizeIs(1));
  EXPECT_THAT(mount.findAll("scroll"), IsEmpty());
}

TEST_F(Panel, ManyImagesScrollBetweenHeaderAndSettings) {
  for (int i = 0; i < 100; ++i) images.attach("Image " + std::to_string(i));
  system.settle();
  show();
  EXPECT_EQ(mount.size, (Size{320, 345}));
  EXPECT_EQ(line("scroll"), "scroll of 320x5714 (0 47 320 200)");
  EXPECT_EQ(line("switch"), "switch on cyan help=监控已启用 (266 12 38 22)");
  EXPECT_EQ(mount.views.at(mount.find("segments")).frame.y, 279);
}

TEST_F(Panel, OnlyTheIdleTimesChangeFromSecondToSecond) {
  images.attach("Alpha");
  images.attach("Beta");
  system.pass(5);
  show();
  system.pass(1);
  EXPECT_EQ(mount.story(),
            "update label \"已空闲 00:06\" 10 secondary\n"
            "update label \"已空闲 00:06\" 10 secondary\n");
}

TEST_F(Panel, ImageThatGoesTakesItsCardAlone) {
  for (const char* name : {"Alpha", "Beta", "Gamma"}) images.attach(name).users = {"cat"};
  system.pass(5);
  show();
  const auto gamma = mount.find("\"Gamma\"");
  images.removeImage("/Volumes/Beta");
  system.pass(5);
  EXPECT_EQ(mount.find("\"Gamma\""), gamma) << "the card is the same one, further up";
  EXPECT_THAT(mount.story(), Not(HasSubstr("insert")));
}

TEST_F(Panel, HeaderSwitchWritesTheSettingAndChangesItsTooltipAtOnce) {
  show();
  panel.toggle(mount.find("switch"), false);
  system.settle();
  EXPECT_FALSE(config.isEnabled());
  EXPECT_THAT(line("switch"), HasSubstr("switch off cyan help=监控已禁用"));
  panel.toggle(mount.find("switch"), true);
  system.settle();
  EXPECT_TRUE(config.isEnabled());
  EXPECT_THAT(line("switch"), HasSubstr("switch on cyan help=监控已启用"));
}

TEST_F(Panel, SettingThatChangesElsewhereShows) {
  show();
  config.setIsEnabled(false);
  config.setTimeoutSeconds(60);
  config.setLaunchAtLogin(true);
  system.settle();
  EXPECT_THAT(line("switch"), HasSubstr("switch off"));
  EXPECT_THAT(line("segments"), HasSubstr("[1分]"));
  EXPECT_THAT(mount.picture(), HasSubstr("label \"1 分钟\""));
  EXPECT_THAT(line("checkbox"), HasSubstr("checkbox on"));
}

TEST_F(Panel, SegmentsStandForTheirSeconds) {
  show();
  const double seconds[] = {60, 300, 900, 1800, 3600};
  const char* const labels[] = {"1 分钟", "5 分钟", "15 分钟", "30 分钟", "1 小时"};
  for (std::size_t i = 0; i < 5; ++i) {
    panel.select(mount.find("segments"), i);
    system.settle();
    EXPECT_EQ(config.timeoutSeconds(), seconds[i]);
    EXPECT_THAT(mount.picture(),
                HasSubstr("label \"" + std::string(labels[i]) + "\" 10 bold cyan"));
  }
}

TEST_F(Panel, TimeoutOfNoSegmentShowsItsLabelAndNoSelection) {
  config.setTimeoutSeconds(45);
  show();
  EXPECT_THAT(mount.picture(), HasSubstr("label \"45 秒\" 10 bold cyan"));
  EXPECT_THAT(line("segments"), HasSubstr("segments 1分 5分 15分 30分 1小时"));
}

TEST_F(Panel, CheckboxWritesLaunchAtLogin) {
  show();
  panel.toggle(mount.find("checkbox"), true);
  system.settle();
  EXPECT_TRUE(config.launchAtLogin());
  EXPECT_THAT(line("checkbox"), HasSubstr("checkbox on"));
}

TEST_F(Panel, LockButtonExcludesByImagePathAndShowsAtTheNextCycle) {
  const auto& image = images.attach("Alpha");
  system.settle();
  show();
  press("help=防止自动推出");
  EXPECT_THAT(config.excludeList(), ElementsAre(image.imagePath));
  EXPECT_THAT(mount.findAll("help=允许自动推出"), IsEmpty());
  system.pass(5);
  EXPECT_THAT(mount.findAll("help=允许自动推出"), SizeIs(1));
}

TEST_F(Panel, EjectButtonEjectsByMountPointAndVolumeName) {
  images.attach("Alpha");
  system.settle();
  show();
  press("help=立即安全推出");
  const auto launches = system.processes.launchesOf("/usr/bin/hdiutil");
  const auto detach = std::find_if(launches.begin(), launches.end(), [](const Command& command) {
    return command.arguments.front() == "detach";
  });
  ASSERT_NE(detach, launches.end());
  EXPECT_THAT(detach->arguments, ElementsAre("detach", "/Volumes/Alpha", "-force"));
  const auto scripts = system.processes.launchesOf("/usr/bin/osascript");
  ASSERT_THAT(scripts, SizeIs(1));
  EXPECT_THAT(scripts[0].arguments[1], HasSubstr("Alpha"));
}

TEST_F(Panel, HoverIsOneForAllCards) {
  images.attach("Alpha");
  images.attach("Beta");
  system.settle();
  show();
  const auto buttons = mount.findAll("help=立即安全推出");
  panel.hover(buttons[0], true);
  panel.hover(buttons[1], true);
  system.settle();
  EXPECT_THAT(mount.findAll("eject.fill 11 white"), SizeIs(1));
}

TEST_F(Panel, CardThatGoesUnderThePointerTakesTheHoverAlong) {
  images.attach("Alpha");
  system.settle();
  show();
  panel.hover(mount.find("help=立即安全推出"), true);
  system.settle();
  images.removeImage("/Volumes/Alpha");
  system.pass(5);
  images.attach("Alpha");
  system.pass(5);
  EXPECT_THAT(mount.findAll("eject.fill 11 red"), SizeIs(1));
}

TEST(TimeoutText, IsCutOffToItsLargestWholeUnit) {
  EXPECT_EQ(timeoutText(0), "0 秒");
  EXPECT_EQ(timeoutText(45), "45 秒");
  EXPECT_EQ(timeoutText(59.99), "59 秒");
  EXPECT_EQ(timeoutText(60), "1 分钟");
  EXPECT_EQ(timeoutText(90), "1 分钟");
  EXPECT_EQ(timeoutText(3599), "59 分钟");
  EXPECT_EQ(timeoutText(3600), "1 小时");
  EXPECT_EQ(timeoutText(5400), "1 小时");
  EXPECT_EQ(timeoutText(7200), "2 小时");
}

TEST(TimeoutText, OddStoredValuesFollowTheSameRule) {
  EXPECT_EQ(timeoutText(-90), "-90 秒");
  EXPECT_EQ(timeoutText(-0.5), "0 秒");
  EXPECT_EQ(timeoutText(3.6e30), "1000000000000000013287555072 小时");
}

TEST(TimeoutTextDeathTest, ThatIsNoNumberEndsTheProgram) {
  EXPECT_DEATH(timeoutText(std::nan("")), "The timeout is no number");
  EXPECT_DEATH(timeoutText(std::numeric_limits<double>::infinity()), "The timeout is no number");
}

}  // namespace
}  // namespace quillmont
