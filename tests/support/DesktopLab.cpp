#include "tests/support/DesktopLab.h"

#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace quillmont::testing {
namespace {

using namespace std::chrono_literals;

constexpr auto kPatience = 15s;
constexpr char kRegistry[] = "/usr/libexec/at-spi2-registryd";
constexpr char kPanelSettings[] = "/usr/lib/x86_64-linux-gnu/xfce4/xfconf/xfconfd";
constexpr char kTraySelection[] = "_NET_SYSTEM_TRAY_S0";

bool canRun(const std::string& program) {
  if (program.starts_with('/')) return access(program.c_str(), X_OK) == 0;
  return run({"sh", "-c", "command -v \"$0\"", program}).status == 0;
}

/// So that nothing stays behind a test that is killed.
std::vector<std::string> endedWithTheTest(std::vector<std::string> command) {
  command.insert(command.begin(), {"setpriv", "--pdeathsig", "KILL"});
  return command;
}

/// The server's complaints about displays that are taken come on the same stream as its number.
std::string lineOfDigits(const std::string& text) {
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line) && !lines.eof();) {
    if (!line.empty() && line.find_first_not_of("0123456789") == line.npos) return line;
  }
  return "";
}

/// A bar along one edge with nothing in it but the tray.
std::string panelLayout(const std::string& edge) {
  const bool upright = edge == "left" || edge == "right";
  const std::string position = edge == "top"      ? "6"
                               : edge == "bottom" ? "10"
                               : edge == "left"   ? "5"
                                                  : "1";
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         "<channel name=\"xfce4-panel\" version=\"1.0\">\n"
         "<property name=\"configver\" type=\"int\" value=\"2\"/>\n"
         "<property name=\"panels\" type=\"array\"><value type=\"int\" value=\"1\"/>\n"
         "<property name=\"panel-1\" type=\"empty\">\n"
         "<property name=\"position\" type=\"string\" value=\"p=" +
         position +
         ";x=0;y=0\"/>\n"
         "<property name=\"mode\" type=\"uint\" value=\"" +
         (upright ? "1" : "0") +
         "\"/>\n"
         "<property name=\"length\" type=\"uint\" value=\"100\"/>\n"
         "<property name=\"position-locked\" type=\"bool\" value=\"true\"/>\n"
         "<property name=\"size\" type=\"uint\" value=\"26\"/>\n"
         "<property name=\"plugin-ids\" type=\"array\"><value type=\"int\" value=\"1\"/>"
         "<value type=\"int\" value=\"2\"/></property>\n"
         "</property></property>\n"
         "<property name=\"plugins\" type=\"empty\">\n"
         "<property name=\"plugin-1\" type=\"string\" value=\"separator\">"
         "<property name=\"expand\" type=\"bool\" value=\"true\"/></property>\n"
         "<property name=\"plugin-2\" type=\"string\" value=\"systray\"/>\n"
         "</property></channel>\n";
}

}  // namespace

std::string DesktopLab::whyImpossible(const DesktopOptions& options) {
  std::vector<std::string> programs = {"setpriv", "Xvfb",   "openbox", "dbus-daemon",
                                       "xdotool", "import", kRegistry};
  if (options.monitors > 1) programs.emplace_back("xrandr");
  if (options.compositor) programs.emplace_back("picom");
  if (options.tray == Tray::xEmbed) programs.emplace_back("trayer");
  if (options.tray == Tray::statusNotifier) {
    programs.insert(programs.end(), {"busctl", "xfce4-panel", kPanelSettings});
  }
  for (const auto& program : programs) {
    if (!canRun(program)) return "there is no " + program + " here";
  }
  return "";
}

DesktopLab::DesktopLab(const DesktopOptions& options) {
  for (const auto* name : {"/home", "/runtime"}) {
    std::filesystem::create_directories(folder_.path() + name);
  }
  chmod((folder_.path() + "/runtime").c_str(), 0700);
  startServer(options);
  if (options.monitors > 1) divide(options);
  startAccessibility();
  startWindowManager();
  if (options.compositor) startCompositor();
  startTray(options.tray, options.trayEdge);
}

/// A server that is killed leaves its lock and its socket behind.
DesktopLab::~DesktopLab() {
  server_->signal(SIGTERM);
  server_->waitForExit(5s);
}

Environment DesktopLab::changes() const {
  return {{"DISPLAY", display_},
          {"WAYLAND_DISPLAY", ""},
          {"XAUTHORITY", ""},
          {"XDG_CURRENT_DESKTOP", ""},
          {"DESKTOP_SESSION", ""},
          {"XDG_SESSION_TYPE", ""},
          {"DBUS_SESSION_BUS_ADDRESS", bus_.address()},
          {"AT_SPI_BUS_ADDRESS", ""},
          {"NO_AT_BRIDGE", ""},
          {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1"},
          {"QT_QPA_PLATFORM", ""},
          {"QT_SCALE_FACTOR", ""}};
}

/// One of the desktop's own programs, kept from the user's settings.
std::unique_ptr<Program> DesktopLab::start(const std::vector<std::string>& command) const {
  auto environment = changes();
  environment["HOME"] = folder_.path() + "/home";
  environment["XDG_RUNTIME_DIR"] = folder_.path() + "/runtime";
  environment["XDG_CONFIG_HOME"] = folder_.path() + "/home/.config";
  environment["XFCE_PANEL_MIGRATE_DEFAULT"] = "1";
  environment["NO_AT_BRIDGE"] = "1";
  return std::make_unique<Program>(endedWithTheTest(command), environmentWith(environment));
}

void DesktopLab::startServer(const DesktopOptions& options) {
  const auto size = std::to_string(options.width) + "x" + std::to_string(options.height) + "x24";
  server_ = std::make_unique<Program>(endedWithTheTest(
      {"Xvfb", "-displayfd", "1", "-screen", "0", size, "-nolisten", "tcp", "-noreset", "-ac"}));
  std::string number;
  const auto told = [&] {
    number = lineOfDigits(server_->output());
    return !number.empty();
  };
  if (!eventually(told, kPatience)) {
    throw std::runtime_error("the X server does not start: " + server_->output());
  }
  display_ = ":" + number;
  screen_ = std::make_unique<XScreen>(display_);
}

/// The server has one output; of the monitors all but the first are without any.
void DesktopLab::divide(const DesktopOptions& options) const {
  const auto width = std::to_string(options.width / options.monitors);
  const auto height = std::to_string(options.height);
  for (int number = 0; number < options.monitors; ++number) {
    const auto at = std::to_string(number * options.width / options.monitors);
    const auto outcome =
        run({"xrandr", "--setmonitor", "monitor" + std::to_string(number),
             width + "/200x" + height + "/150+" + at + "+0", number == 0 ? "screen" : "none"},
            environment());
    if (outcome.status != 0) throw std::runtime_error("xrandr: " + outcome.standardError);
  }
}

void DesktopLab::startAccessibility() {
  accessibilityService_ = std::make_unique<AccessibilityService>(bus_.address());
  registry_ = start({kRegistry});
  const auto connect = [this] {
    try {
      accessibility_ = std::make_unique<Accessibility>(bus_.address());
    } catch (const std::runtime_error&) {
      return false;
    }
    return true;
  };
  if (!eventually(connect, kPatience)) {
    throw std::runtime_error("no accessibility service: " + registry_->output());
  }
}

void DesktopLab::startWindowManager() {
  windowManager_ = start({"openbox", "--sm-disable"});
  if (!eventually([this] { return screen_->rootHas("_NET_SUPPORTING_WM_CHECK"); }, kPatience)) {
    throw std::runtime_error("no window manager: " + windowManager_->output());
  }
}

void DesktopLab::startCompositor() {
  compositor_ = start({"picom", "--backend", "xrender", "--config", "/dev/null"});
  if (!eventually([this] { return screen_->isOwned("_NET_WM_CM_S0"); }, kPatience)) {
    throw std::runtime_error("no compositor: " + compositor_->output());
  }
}

void DesktopLab::startTray(Tray tray, const std::string& edge) {
  if (tray == Tray::none) return;
  if (tray == Tray::xEmbed) {
    tray_ =
        start({"trayer", "--edge", edge, "--align", "right", "--widthtype", "request", "--height",
               "24", "--expand", "true", "--SetDockType", "true", "--SetPartialStrut", "true"});
  } else {
    const auto settings = folder_.path() + "/home/.config/xfce4/xfconf/xfce-perchannel-xml";
    std::filesystem::create_directories(settings);
    std::ofstream(settings + "/xfce4-panel.xml") << panelLayout(edge);
    startPanel();
  }
  if (!eventually([this] { return screen_->isOwned(kTraySelection); }, kPatience)) {
    throw std::runtime_error("no tray: " + tray_->output());
  }
}

void DesktopLab::startPanel() {
  panelSettings_ = start({kPanelSettings});
  tray_ = start({"xfce4-panel", "--disable-wm-check"});
  const std::vector<std::string> question = {"busctl",
                                             "--address=" + bus_.address(),
                                             "--auto-start=no",
                                             "get-property",
                                             "org.kde.StatusNotifierWatcher",
                                             "/StatusNotifierWatcher",
                                             "org.kde.StatusNotifierWatcher",
                                             "IsStatusNotifierHostRegistered"};
  if (!eventually([&] { return run(question).standardOutput == "b true\n"; }, kPatience)) {
    throw std::runtime_error("no panel: " + tray_->output());
  }
}

void DesktopLab::stopTray() {
  tray_.reset();
  panelSettings_.reset();
  static_cast<void>(eventually([this] { return !screen_->isOwned(kTraySelection); }, kPatience));
}

void DesktopLab::point(std::vector<std::string> commands) {
  commands.insert(commands.begin(), "xdotool");
  const auto outcome = run(commands, environment());
  if (outcome.status != 0) throw std::runtime_error("xdotool: " + outcome.standardError);
}

void DesktopLab::move(int x, int y) {
  point({"mousemove", std::to_string(x), std::to_string(y)});
}

void DesktopLab::click(int x, int y, int button) {
  move(x, y);
  point({"click", std::to_string(button)});
}

void DesktopLab::press(int button) {
  point({"mousedown", std::to_string(button)});
}

void DesktopLab::release(int button) {
  point({"mouseup", std::to_string(button)});
}

void DesktopLab::key(const std::string& name) {
  point({"key", name});
}

void DesktopLab::type(const std::string& text) {
  point({"type", "--", text});
}

bool DesktopLab::screenshot(const std::string& path) {
  return run({"import", "-window", "root", "png:" + path}, environment()).status == 0;
}

std::optional<ScreenWindow> DesktopLab::window(const std::string& name) {
  for (auto& window : windows()) {
    if (window.viewable && (window.title == name || window.className == name)) return window;
  }
  return std::nullopt;
}

std::optional<Control> DesktopLab::waitFor(const std::string& role, const std::string& name,
                                           std::chrono::milliseconds limit) {
  std::optional<Control> found;
  static_cast<void>(eventually(
      [&] {
        found = accessibility_->find(role, name);
        return found.has_value();
      },
      limit));
  return found;
}

Control DesktopLab::control(const std::string& role, const std::string& name) {
  auto found = waitFor(role, name);
  if (!found) {
    throw std::runtime_error("no " + role + " \"" + name + "\" in\n" + accessibility_->picture());
  }
  return *std::move(found);
}

bool DesktopLab::waitUntilGone(const std::string& role, const std::string& name,
                               std::chrono::milliseconds limit) {
  return eventually([&] { return !accessibility_->find(role, name); }, limit);
}

void DesktopLab::click(const Control& control, int button) {
  click(control.rectangle.centerX(), control.rectangle.centerY(), button);
}

}  // namespace quillmont::testing
