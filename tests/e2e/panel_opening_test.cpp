// The icon in the tray, and how the panel opens and closes.

#include "tests/e2e/PanelTest.h"
#include "tests/support/StatusNotifierBar.h"

namespace quillmont::testing {
namespace {

using namespace std::chrono_literals;
using ::testing::HasSubstr;
using ::testing::Not;

/// A place on the desktop far from icon and panel.
constexpr int kElsewhereX = 100, kElsewhereY = 600;

TEST_F(PanelTest, IconAppearsAndAClickOpensAndTheNextOneCloses) {
  start();
  openPanel();
  EXPECT_TRUE(isSeen("label", "暂无挂载的 DMG 镜像"));
  clickIcon();
  EXPECT_TRUE(panelCloses());
  openPanel();
}

TEST_F(PanelTest, PanelHangsBelowTheIcon) {
  start();
  openPanel();
  const auto place = icon();
  const auto panel = windowOfWidth(320, 400)->rectangle;
  EXPECT_NEAR(panel.y, place.y + place.height, 3);
  EXPECT_LE(panel.x, place.centerX());
  EXPECT_GE(panel.x + panel.width, place.centerX());
}

TEST_F(PanelTest, LeftAndRightClicksElsewhereClose) {
  start();
  for (const int button : {1, 3}) {
    openPanel();
    lab->click(kElsewhereX, kElsewhereY, button);
    EXPECT_TRUE(panelCloses()) << "button " << button;
    lab->key("Escape");  // a menu of the desktop's own
  }
}

TEST_F(PanelTest, MiddleClickElsewhereDoesNotClose) {
  start();
  openPanel();
  lab->click(kElsewhereX, kElsewhereY, 2);
  EXPECT_TRUE(panelStays());
}

TEST_F(PanelTest, KeysOtherThanEscapeDoNotClose) {
  start();
  openPanel();
  lab->type("x ");
  lab->key("Tab");
  EXPECT_TRUE(panelStays());
}

TEST_F(PanelTest, EscapeClosesAndTheNextClickOpens) {
  start();
  openPanel();
  lab->key("Escape");
  EXPECT_TRUE(panelCloses());
  openPanel();
  lab->click(kElsewhereX, kElsewhereY);
  EXPECT_TRUE(panelCloses()) << "the monitor that was left behind does no harm";
}

TEST_F(PanelTest, ClickInsideDoesNotClose) {
  start();
  openPanel();
  lab->click(lab->control("label", "空闲退出超时时间"));
  lab->click(lab->control("label", "Quillmont"), 3);
  EXPECT_TRUE(panelStays());
}

TEST_F(PanelTest, WithACompositorItIsTheSame) {
  DesktopOptions options;
  options.compositor = true;
  if (const auto reason = DesktopLab::whyImpossible(options); !reason.empty()) {
    GTEST_SKIP() << reason;
  }
  startDesktop(options);
  start();
  openPanel();
  lab->click(lab->control("label", "Quillmont"));
  EXPECT_TRUE(panelStays());
  clickIcon();
  EXPECT_TRUE(panelCloses());
  openPanel();
  lab->click(kElsewhereX, kElsewhereY);
  EXPECT_TRUE(panelCloses());
}

TEST_F(PanelTest, TrayAtTheBottomHasThePanelAboveTheIcon) {
  DesktopOptions options;
  options.trayEdge = "bottom";
  startDesktop(options);
  start();
  openPanel();
  const auto panel = windowOfWidth(320, 400)->rectangle;
  EXPECT_LE(panel.y + panel.height, icon().y + 3);
}

TEST_F(PanelTest, TrayThatComesLateGetsTheIcon) {
  DesktopOptions options;
  options.tray = Tray::none;
  startDesktop(options);
  start();
  ASSERT_FALSE(eventually([this] { return windowOfWidth(8, 64).has_value(); }, 1s));
  lab->startTray(Tray::xEmbed, "top");
  openPanel();
}

TEST_F(PanelTest, TrayThatRestartsAtAnotherEdgeKeepsTheItem) {
  start();
  openPanel();
  clickIcon();
  ASSERT_TRUE(panelCloses());
  lab->stopTray();
  lab->startTray(Tray::xEmbed, "bottom");
  EXPECT_TRUE(eventually([this] { return windowOfWidth(8, 64) && icon().y > 400; }, 10s));
  openPanel();
}

TEST_F(PanelTest, BarOfTheMessageBusActivatesTheItem) {
  DesktopOptions options;
  options.tray = Tray::none;
  startDesktop(options);
  const StatusNotifierBar bar(lab->busAddress());
  start();
  const auto item = bar.waitForItem(10s);
  ASSERT_TRUE(item) << program->output();
  ASSERT_TRUE(StatusNotifierBar::activate(lab->busAddress(), *item));
  EXPECT_TRUE(panelOpens());
  ASSERT_TRUE(StatusNotifierBar::activate(lab->busAddress(), *item));
  EXPECT_TRUE(panelCloses());
}

TEST_F(PanelTest, BarOfTheMessageBusIsNotCoveredOnEitherOfTwoMonitors) {
  DesktopOptions options;
  options.width = 1600;
  options.monitors = 2;
  options.trayEdge = "bottom";
  if (const auto reason = DesktopLab::whyImpossible(options); !reason.empty()) {
    GTEST_SKIP() << reason;
  }
  startDesktop(options);
  const StatusNotifierBar bar(lab->busAddress());
  start();
  const auto item = bar.waitForItem(10s);
  ASSERT_TRUE(item) << program->output();
  for (const int monitor : {0, 800}) {
    lab->move(monitor + 500, options.height - 3);
    ASSERT_TRUE(StatusNotifierBar::activate(lab->busAddress(), *item));
    ASSERT_TRUE(panelOpens());
    const auto panel = windowOfWidth(320, 400)->rectangle;
    EXPECT_LE(panel.y + panel.height, options.height - 20) << panel;
    EXPECT_TRUE(panel.contains(monitor + 500, panel.centerY())) << panel;
    ASSERT_TRUE(StatusNotifierBar::activate(lab->busAddress(), *item));
    ASSERT_TRUE(panelCloses());
  }
}

TEST_F(PanelTest, BarOfTheMessageBusMayComeLateAndRestart) {
  DesktopOptions options;
  options.tray = Tray::none;
  startDesktop(options);
  start();
  ASSERT_FALSE(program->waitForOutput("without a panel", 1s));
  auto bar = std::make_unique<StatusNotifierBar>(lab->busAddress());
  ASSERT_TRUE(bar->waitForItem(10s)) << program->output();
  bar.reset();
  bar = std::make_unique<StatusNotifierBar>(lab->busAddress());
  const auto item = bar->waitForItem(10s);
  ASSERT_TRUE(item);
  ASSERT_TRUE(StatusNotifierBar::activate(lab->busAddress(), *item));
  EXPECT_TRUE(panelOpens());
}

TEST_F(PanelTest, BusThatDiesLeavesTheEmbeddedIconAndThePanel) {
  start();
  openPanel();
  lab->killBus();
  EXPECT_TRUE(panelStays()) << program->output();
  clickIcon();
  EXPECT_TRUE(panelCloses()) << program->output();
  clickIcon();
  EXPECT_TRUE(panelOpens()) << program->output();
}

TEST_F(PanelTest, BusThatDiesTakesTheBarsIconAlongAndTheProgramGoesOn) {
  DesktopOptions options;
  options.tray = Tray::none;
  startDesktop(options);
  auto bar = std::make_unique<StatusNotifierBar>(lab->busAddress());
  start();
  ASSERT_TRUE(bar->waitForItem(10s)) << program->output();
  bar.reset();
  lab->killBus();
  EXPECT_EQ(program->waitForExit(1s), -1) << program->output();
}

TEST_F(PanelTest, PressOnTheBarsIconThatClosedThePanelDoesNotOpenItAgain) {
  DesktopOptions options;
  options.tray = Tray::none;
  startDesktop(options);
  const StatusNotifierBar bar(lab->busAddress());
  start();
  const auto item = bar.waitForItem(10s);
  ASSERT_TRUE(item) << program->output();
  ASSERT_TRUE(StatusNotifierBar::activate(lab->busAddress(), *item));
  ASSERT_TRUE(panelOpens());
  // The bar's window is not the program's: its press is a click elsewhere, its release the
  // activation.
  lab->move(kElsewhereX, kElsewhereY);
  lab->press(1);
  ASSERT_TRUE(panelCloses());
  lab->release(1);
  ASSERT_TRUE(StatusNotifierBar::activate(lab->busAddress(), *item));
  EXPECT_FALSE(eventually([this] { return isPanelShown(); }, 700ms));
  ASSERT_TRUE(StatusNotifierBar::activate(lab->busAddress(), *item));
  EXPECT_TRUE(panelOpens());
}

TEST_F(PanelTest, WithoutADisplayTheProgramWatchesAndSaysSoOnce) {
  startDesktop();
  start({{"DISPLAY", ""}});
  EXPECT_TRUE(program->waitForOutput("without a panel", 5s)) << program->output();
  EXPECT_FALSE(program->waitForOutput("without a panel", 500ms, 2));
}

TEST_F(PanelTest, DisplayThatDoesNotAnswerIsNone) {
  startDesktop();
  start({{"DISPLAY", ":987"}});
  EXPECT_TRUE(program->waitForOutput("without a panel", 5s)) << program->output();
}

}  // namespace
}  // namespace quillmont::testing
