// What the desktop laboratory shows of a plain program, so that what it says of Quillmont counts.

#include <gmock/gmock.h>

#include <optional>
#include <stdexcept>
#include <utility>

#include "tests/support/DesktopLab.h"

namespace quillmont::testing {
namespace {

using namespace std::chrono_literals;
using ::testing::HasSubstr;

constexpr char kTitle[] = "实验 window";

class DesktopLabTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (const auto reason = DesktopLab::whyImpossible(); !reason.empty()) GTEST_SKIP() << reason;
  }

  static bool hasParts(const DesktopOptions& options) {
    return DesktopLab::whyImpossible(options).empty();
  }

  /// Returns once the program's window is where it stays.
  void open(const DesktopOptions& options = {}) {
    lab = std::make_unique<DesktopLab>(options);
    program =
        std::make_unique<Program>(std::vector<std::string>{DESKTOP_WINDOW}, lab->environment());
    const auto settled = [this] {
      const auto seen = lab->window(kTitle);
      const auto told = lab->accessibility().find("filler", kTitle);
      return seen && told && seen->rectangle == told->rectangle;
    };
    if (!eventually(settled, 15s)) throw std::runtime_error(lab->accessibility().picture());
  }

  /// Where the status item's colour is to be seen along the edge of a screen of 1024 by 768.
  std::optional<std::pair<int, int>> statusItem() {
    constexpr ScreenColor kColor = {200, 30, 30};
    for (int y = 4; y < 768; y += 4) {
      for (int x = 1020; x > 0; x -= y < 32 || y > 736 ? 4 : 1020) {
        if (lab->pixel(x, y) == kColor) return std::pair(x, y);
      }
    }
    return std::nullopt;
  }

  void expectStatusItemToBeClickable() {
    std::optional<std::pair<int, int>> place;
    ASSERT_TRUE(eventually(
        [&] {
          place = statusItem();
          return place.has_value();
        },
        10s));
    const auto clicks = ++clicks_;
    lab->click(place->first, place->second);
    EXPECT_TRUE(program->waitForOutput("item clicked\n", 5s, clicks)) << program->output();
  }

  std::unique_ptr<DesktopLab> lab;
  std::unique_ptr<Program> program;

 private:
  int clicks_ = 0;
};

TEST_F(DesktopLabTest, WindowIsSeenWithItsTitlePlaceAndColour) {
  open();
  const auto window = lab->window(kTitle);
  ASSERT_TRUE(window);
  EXPECT_EQ(window->process, program->pid());
  EXPECT_EQ(window->rectangle.width, 300);
  EXPECT_EQ(window->rectangle.height, 200);
  const ScreenColor color = {10, 120, 40};
  EXPECT_TRUE(eventually(
      [&] { return lab->pixel(window->rectangle.x + 2, window->rectangle.y + 2) == color; }, 5s));
  EXPECT_NE(lab->pixel(window->rectangle.x - 20, window->rectangle.y + 2), color);
  EXPECT_FALSE(lab->window("another window"));
}

TEST_F(DesktopLabTest, ControlsAreFoundByRoleAndName) {
  open();
  auto& controls = lab->accessibility();
  const auto window = lab->control("filler", kTitle);
  EXPECT_EQ(window.rectangle, lab->window(kTitle)->rectangle);
  EXPECT_EQ(controls.children(window).size(), 5u);
  const auto label = lab->control("label", "已空闲 00:05");
  EXPECT_TRUE(window.rectangle.contains(label.rectangle.centerX(), label.rectangle.centerY()));
  EXPECT_FALSE(controls.find("label", "Nobody sees this"));
  EXPECT_FALSE(controls.find("push button", "已空闲 00:05"));
  EXPECT_THAT(controls.picture(), HasSubstr("\n    push button \"Press me\"\n"));
}

TEST_F(DesktopLabTest, PointerPressesAndChecks) {
  open();
  const auto check = lab->control("check box");
  EXPECT_FALSE(check.is("checked"));
  lab->click(check);
  EXPECT_TRUE(eventually([&] { return lab->control("check box").is("checked"); }, 5s));
  lab->click(lab->control("push button"));
  EXPECT_TRUE(program->waitForOutput("pressed\n", 5s));
  EXPECT_TRUE(lab->waitFor("label", "Pressed"));
  EXPECT_TRUE(lab->waitUntilGone("label", "已空闲 00:05"));
}

TEST_F(DesktopLabTest, OtherButtonsDoNotPress) {
  open();
  for (const int button : {2, 3, 4, 5}) lab->click(lab->control("push button"), button);
  lab->click(lab->control("check box"));
  EXPECT_TRUE(eventually([&] { return lab->control("check box").is("checked"); }, 5s));
  EXPECT_EQ(program->output().find("pressed"), std::string::npos);
}

TEST_F(DesktopLabTest, ControlIsPressedWithoutThePointer) {
  open();
  EXPECT_TRUE(lab->accessibility().press(lab->control("push button")));
  EXPECT_TRUE(program->waitForOutput("pressed\n", 5s));
  EXPECT_FALSE(lab->accessibility().press(lab->control("label")));
}

TEST_F(DesktopLabTest, KeysGoWhereTheFocusIs) {
  open();
  lab->click(lab->control("text", "Words"));
  EXPECT_TRUE(eventually([&] { return lab->control("text", "Words").is("focused"); }, 5s));
  lab->type("some words");
  lab->key("Return");
  EXPECT_TRUE(program->waitForOutput("words: some words\n", 5s)) << program->output();
}

TEST_F(DesktopLabTest, ScreenshotIsWritten) {
  open();
  const TemporaryFolder folder;
  const auto path = folder.path() + "/screen.png";
  ASSERT_TRUE(lab->screenshot(path));
  EXPECT_EQ(run({"identify", "-format", "%m %w %h", path}).standardOutput, "PNG 1024 768");
  EXPECT_FALSE(lab->screenshot("/nowhere/screen.png"));
}

TEST_F(DesktopLabTest, StatusItemIsInTheTrayAtEachEdge) {
  open({.trayEdge = "bottom"});
  expectStatusItemToBeClickable();
  for (const auto* edge : {"top", "left", "right"}) {
    lab->stopTray();
    EXPECT_TRUE(eventually([&] { return !statusItem(); }, 5s));
    lab->startTray(Tray::xEmbed, edge);
    expectStatusItemToBeClickable();
  }
}

TEST_F(DesktopLabTest, StatusItemIsInThePanelThatAsksTheBus) {
  if (!hasParts({.tray = Tray::statusNotifier})) GTEST_SKIP() << "there is no such panel here";
  open({.tray = Tray::statusNotifier});
  expectStatusItemToBeClickable();
}

TEST_F(DesktopLabTest, CompositorIsThereWhenItIsWanted) {
  if (!hasParts({.compositor = true})) GTEST_SKIP() << "there is no compositor here";
  open();
  EXPECT_FALSE(XScreen(lab->display()).isOwned("_NET_WM_CM_S0"));
  program.reset();
  lab.reset();
  open({.compositor = true, .tray = Tray::none});
  EXPECT_TRUE(XScreen(lab->display()).isOwned("_NET_WM_CM_S0"));
  EXPECT_FALSE(XScreen(lab->display()).isOwned("_NET_SYSTEM_TRAY_S0"));
}

TEST_F(DesktopLabTest, ProgramThatEndsIsForgotten) {
  open();
  program.reset();
  EXPECT_TRUE(lab->waitUntilGone("filler"));
  EXPECT_FALSE(lab->window(kTitle));
}

}  // namespace
}  // namespace quillmont::testing
