// A desktop of a test's own: X server, window manager, tray, message bus, accessibility;
// with a pointer and a keyboard that the test moves.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/Accessibility.h"
#include "tests/support/AccessibilityService.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/Program.h"
#include "tests/support/XScreen.h"

namespace quillmont::testing {

enum class Tray {
  none,
  xEmbed,          ///< windows of programs, embedded: trayer
  statusNotifier,  ///< a panel that draws the icons which programs announce on the bus
};

struct DesktopOptions {
  int width = 1024;
  int height = 768;
  int monitors = 1;  ///< side by side, each with an equal share of the width
  bool compositor = false;
  Tray tray = Tray::xEmbed;
  std::string trayEdge = "top";  ///< or bottom, left, right
};

/// Each part of it is really running when the constructor returns; throws when one does not come
/// up. Everything ends with the object. One thread.
class DesktopLab {
 public:
  /// Why there can be no such desktop on this machine; empty if there can.
  static std::string whyImpossible(const DesktopOptions& options = {});

  explicit DesktopLab(const DesktopOptions& options = {});
  ~DesktopLab();
  DesktopLab(const DesktopLab&) = delete;
  DesktopLab& operator=(const DesktopLab&) = delete;

  /// What a program needs to be told to run on this desktop; to be laid over another environment.
  Environment changes() const;

  /// The test's environment with these changes.
  Environment environment() const { return environmentWith(changes()); }
  const std::string& busAddress() const { return bus_.address(); }
  const std::string& display() const { return display_; }

  /// The tray may come late, go, and come back at another edge.
  void startTray(Tray tray, const std::string& edge);
  void stopTray();

  /// The message bus dies, and whoever was on it has none any more.
  void killBus() { bus_.kill(); }

  void move(int x, int y);
  void click(int x, int y, int button = 1);
  void press(int button);
  void release(int button);

  /// A key by its X name: "Escape", "Tab", "space", "shift+Tab".
  void key(const std::string& name);
  void type(const std::string& text);

  /// The whole screen as a PNG file; false if it cannot be written.
  bool screenshot(const std::string& path);

  ScreenColor pixel(int x, int y) { return screen_->pixel(x, y); }
  std::vector<ScreenWindow> windows() { return screen_->windows(); }

  /// The first window that can be seen whose title or class is `name`.
  std::optional<ScreenWindow> window(const std::string& name);

  Accessibility& accessibility() { return *accessibility_; }

  /// Waits until a control of this role and name is on the screen.
  std::optional<Control> waitFor(const std::string& role, const std::string& name = "",
                                 std::chrono::milliseconds limit = std::chrono::seconds(5));
  bool waitUntilGone(const std::string& role, const std::string& name = "",
                     std::chrono::milliseconds limit = std::chrono::seconds(5));

  /// The same for those that have to be there: throws when it does not come, saying what did.
  Control control(const std::string& role, const std::string& name = "");

  /// Clicks into the middle of a control; for programs that do not scale.
  void click(const Control& control, int button = 1);

 private:
  void startServer(const DesktopOptions& options);
  void divide(const DesktopOptions& options) const;
  void startWindowManager();
  void startCompositor();
  void startAccessibility();
  void startPanel();
  std::unique_ptr<Program> start(const std::vector<std::string>& command) const;
  void point(std::vector<std::string> commands);

  // In the order in which they need one another; they end in the opposite one.
  const TemporaryFolder folder_;
  PrivateBus bus_;
  std::string display_;
  std::unique_ptr<Program> server_;
  std::unique_ptr<XScreen> screen_;
  std::unique_ptr<AccessibilityService> accessibilityService_;
  std::unique_ptr<Program> registry_;
  std::unique_ptr<Accessibility> accessibility_;
  std::unique_ptr<Program> windowManager_;
  std::unique_ptr<Program> compositor_;
  std::unique_ptr<Program> panelSettings_;
  std::unique_ptr<Program> tray_;
};

}  // namespace quillmont::testing
