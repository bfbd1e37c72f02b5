// The real program on a desktop of the test's own, seen and used as its user does.
#pragma once

#include <gmock/gmock.h>
#include <signal.h>

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/XmlPropertyLists.h"
#include "platform/posix/files.h"
#include "tests/support/DesktopLab.h"
#include "tests/support/DiskImages.h"
#include "tests/support/NotificationRecorder.h"
#include "tests/support/Session.h"

namespace quillmont::testing {

class PanelTest : public ::testing::Test {
 protected:
  using Milliseconds = std::chrono::milliseconds;

  void SetUp() override {
    if (const auto reason = DesktopLab::whyImpossible(); !reason.empty()) GTEST_SKIP() << reason;
  }

  void TearDown() override {
    if (program && program->running()) {
      program->signal(SIGTERM);
      EXPECT_EQ(program->waitForExit(std::chrono::seconds(10)), 0) << program->output();
    }
  }

  void startDesktop(const DesktopOptions& options = {}) {
    lab = std::make_unique<DesktopLab>(options);
    recorder = std::make_unique<NotificationRecorder>(lab->busAddress());
    session = std::make_unique<Session>(lab->busAddress(), lab->changes());
    session->store({});
  }

  /// The program with `changes` to its environment, on a desktop that has been started or is now.
  void start(const Environment& changes = {}) {
    if (!lab) startDesktop();
    program = session->start(changes);
  }

  /// The program's window that shows and is at most, or at least, so wide.
  std::optional<ScreenWindow> windowOfWidth(int least, int most) {
    for (const auto& window : lab->windows()) {
      const auto& size = window.rectangle;
      if (window.viewable && window.className == "Quillmont" && size.width >= least &&
          size.width <= most && size.height > 4) {
        return window;
      }
    }
    return std::nullopt;
  }

  /// The embedded icon's place once it stays there.
  ScreenRectangle icon() {
    std::optional<ScreenWindow> before, now;
    const bool docked = eventually(
        [&] {
          before = std::exchange(now, windowOfWidth(8, 64));
          return before && now && before->rectangle == now->rectangle;
        },
        Milliseconds(30'000));
    if (!docked) throw std::runtime_error("no icon in the tray: " + program->output());
    return now->rectangle;
  }

  void clickIcon() {
    const auto place = icon();
    lab->click(place.centerX(), place.centerY());
  }

  bool isPanelShown() { return windowOfWidth(320, 400).has_value(); }
  bool panelOpens() {
    return eventually([this] { return isPanelShown(); }, Milliseconds(5000));
  }
  bool panelCloses() {
    return eventually([this] { return !isPanelShown(); }, Milliseconds(5000));
  }

  /// The panel stays open for as long as a click would need to close it.
  bool panelStays() {
    return !eventually([this] { return !isPanelShown(); }, Milliseconds(700));
  }

  void openPanel() {
    clickIcon();
    ASSERT_TRUE(panelOpens()) << program->output();
    lab->control("label", "Quillmont");
  }

  bool isSeen(const std::string& role, const std::string& name) {
    return lab->waitFor(role, name).has_value();
  }

  /// How many controls of this role and name are to be seen.
  int count(const std::string& role, const std::string& name) {
    int result = 0;
    for (const auto& control : lab->accessibility().shown()) {
      result += control.role == role && control.name == name ? 1 : 0;
    }
    return result;
  }

  /// The only control of the role whose name the panel does not fix.
  Control theSwitch() {
    for (const char* name : {"监控已启用", "监控已禁用"}) {
      if (const auto found = lab->accessibility().find("check box", name)) return *found;
    }
    throw std::runtime_error("no switch in " + lab->accessibility().picture());
  }

  /// A value of the settings file, if it is there.
  std::optional<PropertyList> stored(const std::string& key) {
    const auto text = readFile(session->settingsFile());
    if (!text) return std::nullopt;
    const auto list = XmlPropertyLists().parse(*text);
    const auto* const value = list ? list->find("com.norwaldex.quillmont." + key) : nullptr;
    return value ? std::optional(*value) : std::nullopt;
  }

  std::unique_ptr<DesktopLab> lab;
  std::unique_ptr<NotificationRecorder> recorder;
  std::unique_ptr<Session> session;
  std::unique_ptr<Program> program;
};

/// With real disk images.
class PanelWithImages : public PanelTest {
 protected:
  void SetUp() override {
    PanelTest::SetUp();
    if (IsSkipped()) return;
    if (const auto reason = DiskImages::whyImpossible(); !reason.empty()) GTEST_SKIP() << reason;
    startDesktop();
    images = std::make_unique<DiskImages>(session->environment());
  }

  void TearDown() override {
    PanelTest::TearDown();
    images.reset();
  }

  /// Attaches a new image and answers its path.
  std::string attach(const std::string& label) {
    auto image = images->makeExt4(label + ".img", label);
    const auto outcome = images->attach(image);
    EXPECT_EQ(outcome.status, 0) << outcome.standardError;
    return image;
  }

  std::unique_ptr<DiskImages> images;
};

}  // namespace quillmont::testing
