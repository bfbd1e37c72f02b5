#include "tests/soak/PanelHand.h"

#include <algorithm>

#include "tests/soak/Finding.h"

namespace quillmont::testing {
namespace {

constexpr std::chrono::seconds kPatience(10 * kSlowness);

}  // namespace

void PanelHand::open() {
  const auto item = bar_.waitForItem(kPatience);
  if (!item) throw Finding("the program announces no status item");
  if (isOpen()) return;
  StatusNotifierBar::activate(lab_.busAddress(), *item);
  if (!eventually([this] { return isOpen(); }, kPatience)) throw Finding("no panel opens");
}

bool PanelHand::isOpen() {
  const auto windows = lab_.windows();
  return std::any_of(windows.begin(), windows.end(), [](const ScreenWindow& window) {
    const auto& size = window.rectangle;
    return window.viewable && window.className == "Quillmont" && size.width >= 320 &&
           size.width <= 400 && size.height > 100;
  });
}

bool PanelHand::flipSwitch() {
  for (const auto& control : lab_.accessibility().controls()) {
    if (control.name == "监控已启用" || control.name == "监控已禁用") {
      return lab_.accessibility().press(control);
    }
  }
  return false;
}

/// By the order of the controls: their places change while they are asked for, one after another.
bool PanelHand::pressOnCard(const std::string& label, const std::vector<std::string>& helps) {
  const auto controls = lab_.accessibility().controls();
  const auto isTitle = [](const Control& control) {
    return control.role == "label" && control.name.starts_with(kLabelsBegin);
  };
  auto control = std::find_if(controls.begin(), controls.end(), [&](const Control& candidate) {
    return isTitle(candidate) && candidate.name == label;
  });
  if (control == controls.end()) return false;
  for (++control; control != controls.end() && !isTitle(*control); ++control) {
    if (control->role != "push button") continue;
    const bool meant = std::find(helps.begin(), helps.end(), control->name) != helps.end();
    if (meant) return lab_.accessibility().press(*control);
  }
  return false;
}

}  // namespace quillmont::testing
