#include "tests/screenshots/Studio.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <utility>

#include "platform/posix/files.h"

namespace quillmont::testing {
namespace {

using namespace std::chrono_literals;

constexpr auto kPatience = 10s;
constexpr ScreenColor kWallpaper = {126, 160, 183};
constexpr int kWidth = 1280;  ///< of the desktop, in points
constexpr int kHeight = 800;
constexpr int kTrayMargin = 220;  ///< points from the screen's corner
constexpr int kMargin = 12;       ///< points around what is to be seen
constexpr int kWidestIcon = 64;   ///< pixels
constexpr int kThinnest = 4;      ///< pixels; what is smaller is nothing to look at
constexpr int kHalfCard = 24;     ///< points

void setAge(const std::string& node, std::chrono::seconds age) {
  struct timespec times[2];
  clock_gettime(CLOCK_REALTIME, &times[0]);
  times[0].tv_sec -= age.count();
  times[1] = times[0];
  if (utimensat(AT_FDCWD, node.c_str(), times, 0) != 0) {
    throw std::runtime_error("cannot set the time of " + node);
  }
}

template <class Condition>
void require(Condition condition, const std::string& what) {
  if (!eventually(condition, kPatience)) throw std::runtime_error(what + " does not come");
}

}  // namespace

Studio::Studio(std::string folder, bool compositor, const std::string& trayEdge, int scale)
    : folder_(std::move(folder)),
      scale_(scale),
      width_(kWidth * scale),
      height_(kHeight * scale),
      lab_({.width = width_, .height = height_, .compositor = compositor, .tray = Tray::none}),
      wallpaper_(lab_.display(), kWallpaper),
      recorder_(lab_.busAddress()),
      session_(lab_.busAddress(), lab_.changes()),
      images_(session_.environment()) {
  session_.store({});
  startTray(trayEdge);
}

Studio::~Studio() {
  endProgram();
}

void Studio::startTray(const std::string& edge) {
  const auto pixels = [this](int points) { return std::to_string(points * scale_); };
  tray_ = std::make_unique<Program>(
      std::vector<std::string>{"setpriv", "--pdeathsig", "KILL", "trayer", "--edge", edge,
                               "--align", "right", "--margin", pixels(kTrayMargin), "--widthtype",
                               "request", "--height", pixels(24), "--SetDockType", "true",
                               "--SetPartialStrut", "true"},
      session_.environment());
}

void Studio::endProgram() {
  if (!program_) return;
  program_->signal(SIGTERM);
  program_->waitForExit(kPatience);
  program_.reset();
}

void Studio::openPanel() {
  endProgram();
  moveAway();
  Environment changes;
  if (scale_ > 1) changes["QT_SCALE_FACTOR"] = std::to_string(scale_);
  program_ = session_.start(changes);
  std::optional<ScreenRectangle> before, now;
  const auto isDocked = [&] {
    before = std::exchange(now, icon());
    return before && now && *before == *now;
  };
  require(isDocked, "the icon");
  lab_.click(now->centerX(), now->centerY());
  waitFor("label", "Quillmont");
  moveAway();
}

void Studio::attach(const std::string& label, std::chrono::seconds age) {
  // The names of other file systems' volumes are shorter than this one's.
  constexpr std::size_t kLongestExt4Label = 16;
  const auto file = std::to_string(std::hash<std::string>{}(label)) + ".img";
  const auto image = label.size() > kLongestExt4Label ? images_.makeBtrfs(file, label)
                                                      : images_.makeExt4(file, label);
  if (image.empty()) throw std::runtime_error("no image for " + label);
  const auto outcome = images_.attach(image);
  if (outcome.status != 0) throw std::runtime_error(label + ": " + outcome.standardError);
  for (const auto& loop : DiskImages::loopsOf(image)) setAge("/dev/" + loop, age);
}

void Studio::hold(const std::string& label) {
  holders_.emplace_back(std::vector<std::string>{"setpriv", "--pdeathsig", "KILL", "tail", "-f",
                                                 DiskImages::realPlace(label) + "/note.txt"});
  waitFor("label", "活跃中 (tail");
}

Control Studio::waitFor(const std::string& role, const std::string& beginning) {
  std::optional<Control> found;
  const auto isThere = [&] {
    for (const auto& control : lab_.accessibility().shown()) {
      if (control.role == role && control.name.starts_with(beginning)) found = control;
    }
    return found.has_value();
  };
  if (!eventually(isThere, kPatience)) {
    throw std::runtime_error("no " + role + " \"" + beginning + "\" in\n" +
                             lab_.accessibility().picture());
  }
  return *found;
}

Control Studio::buttonOf(const std::string& label, const std::string& help) {
  const auto title = waitFor("label", label);
  for (const auto& control : lab_.accessibility().shown()) {
    const int distance = control.rectangle.centerY() - title.rectangle.centerY();
    if (control.role == "push button" && control.name == help && std::abs(distance) < kHalfCard) {
      return control;
    }
  }
  throw std::runtime_error("no button \"" + help + "\" in\n" + lab_.accessibility().picture());
}

void Studio::moveTo(const Control& control) {
  lab_.move(control.rectangle.centerX() * scale_, control.rectangle.centerY() * scale_);
}

void Studio::click(const Control& control) {
  lab_.click(control.rectangle.centerX() * scale_, control.rectangle.centerY() * scale_);
}

void Studio::moveAway() {
  lab_.move(8, height_ / 2);
}

void Studio::takePicture(const std::string& name) {
  const auto path = folder_ + "/" + name + ".png";
  std::optional<std::string> before, now;
  const auto isStill = [&] {
    // Without what says when it was taken, equal pictures are equal files.
    const auto outcome = run({"import", "-window", "root", "-crop", area(), "+repage", "-strip",
                              "-define", "png:exclude-chunks=date,time", "png:" + path},
                             lab_.environment());
    if (outcome.status != 0) throw std::runtime_error("import: " + outcome.standardError);
    const auto file = readFile(path);
    before = std::exchange(now, file ? std::optional(*file) : std::nullopt);
    return now && now == before;
  };
  require(isStill, "a picture of " + name);
  std::printf("%s\n", path.c_str());
  std::fflush(stdout);
}

std::vector<ScreenRectangle> Studio::ownWindows() {
  std::vector<ScreenRectangle> result;
  for (const auto& window : lab_.windows()) {
    const auto& place = window.rectangle;
    if (window.viewable && window.className == "Quillmont" && place.width > kThinnest &&
        place.height > kThinnest) {
      result.push_back(place);
    }
  }
  return result;
}

std::optional<ScreenRectangle> Studio::icon() {
  for (const auto& place : ownWindows()) {
    if (place.width <= kWidestIcon) return place;
  }
  return std::nullopt;
}

/// Of all windows of the program, in ImageMagick's notation.
std::string Studio::area() {
  int left = width_, top = height_, right = 0, bottom = 0;
  for (const auto& place : ownWindows()) {
    left = std::min(left, place.x);
    top = std::min(top, place.y);
    right = std::max(right, place.x + place.width);
    bottom = std::max(bottom, place.y + place.height);
  }
  const int margin = kMargin * scale_;
  left = std::max(left - margin, 0);
  top = std::max(top - margin, 0);
  right = std::min(right + margin, width_);
  bottom = std::min(bottom + margin, height_);
  return std::to_string(right - left) + "x" + std::to_string(bottom - top) + "+" +
         std::to_string(left) + "+" + std::to_string(top);
}

}  // namespace quillmont::testing
