#include "tests/support/PosedPanel.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <sstream>

namespace quillmont::testing {
namespace {

constexpr double kTolerance = 1;  ///< points

std::shared_ptr<QuillmontDaemon> pose(TestHost& system, FakeDiskImages& images,
                                      ConfigManager& config) {
  images.attach("Installer");
  images.attach("设计稿 2024");
  images.attach("Backup").users = {"Finder", "预览"};
  images.attach("名字实在太长而在卡片上放不下的一个磁盘映像");
  images.attach("字体");
  for (const char* name : {"Sketches", "Notes", "Music & Films", "照片", "Tools"}) {
    images.attach(name);
  }
  images.image("Sketches").users = {"a process with a long name", "another one", "tail"};
  config.excludeImage(images.image("字体").imagePath);
  auto daemon = QuillmontDaemon::make(system.host(), config);
  system.pass(75);
  return daemon;
}

std::string point(double length) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%g", std::round(length * 100) / 100);
  return text.data();
}

/// What stands before the frame in a line.
std::string nameIn(const std::string& line) {
  return line.substr(0, line.rfind(" ("));
}

std::vector<double> numbersIn(const std::string& line) {
  std::istringstream stream(line.substr(line.rfind(" (") + 2));
  std::vector<double> numbers;
  for (double number; stream >> number;) numbers.push_back(number);
  return numbers;
}

bool isNear(const std::string& one, const std::string& other) {
  const auto left = numbersIn(one), right = numbersIn(other);
  if (left.size() != 4 || right.size() != 4) return false;
  for (std::size_t i = 0; i < left.size(); ++i) {
    if (std::abs(left[i] - right[i]) > kTolerance) return false;
  }
  return true;
}

}  // namespace

PosedPanel::PosedPanel()
    : daemon_(pose(system_, images_, config_)),
      controller_(MainView(system_.host(), *daemon_, config_), system_.runLoop) {}

void PosedPanel::show(NativeMount& native, const Metrics& metrics) {
  mount_.native = &native;
  controller_.mount(mount_, metrics);
  controller_.setVisible(true);
}

void PosedPanel::openMenu() {
  controller_.press(find("name=更多操作"));
  system_.settle();
}

std::string PosedPanel::frames(const std::function<Rect(ViewId)>& frameOf) const {
  std::string text;
  append(text, kRootView, 0, frameOf);
  return text;
}

void PosedPanel::append(std::string& text, ViewId parent, int depth,
                        const std::function<Rect(ViewId)>& frameOf) const {
  for (const auto id : mount_.known.views.at(parent).children) {
    const auto frame = frameOf(id);
    text += std::string(2 * static_cast<std::size_t>(depth), ' ') + nameIn(mount_.known.line(id)) +
            " (" + point(frame.x) + " " + point(frame.y) + " " + point(frame.width) + " " +
            point(frame.height) + ")\n";
    append(text, id, depth + 1, frameOf);
  }
}

void PosedPanel::Remembering::apply(const std::vector<ViewChange>& changes, Size size) {
  known.apply(changes, size);
  native->apply(changes, size);
}

std::string differencesOfFrames(const std::string& one, const std::string& other) {
  std::istringstream left(one), right(other);
  std::string differences;
  for (;;) {
    std::string leftLine, rightLine;
    const bool hasLeft = static_cast<bool>(std::getline(left, leftLine));
    const bool hasRight = static_cast<bool>(std::getline(right, rightLine));
    if (!hasLeft && !hasRight) return differences;
    const bool isSame =
        hasLeft && hasRight && nameIn(leftLine) == nameIn(rightLine) && isNear(leftLine, rightLine);
    if (!isSame) differences += "- " + leftLine + "\n+ " + rightLine + "\n";
  }
}

}  // namespace quillmont::testing
