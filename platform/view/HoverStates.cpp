#include "platform/view/HoverStates.h"

#include <utility>
#include <vector>

namespace quillmont {

HoverStates::HoverStates(ViewActions& actions, std::function<void(std::function<void()>)> later)
    : actions_(actions), later_(std::move(later)) {}

void HoverStates::set(ViewId view, bool isInside) {
  const auto found = states_.find(view);
  if (found != states_.end()) found->second.isInside = isInside;
}

void HoverStates::release() {
  held_ = false;
  tellSoon();
}

void HoverStates::tell() {
  if (held_) return;
  const std::weak_ptr<bool> alive = alive_;
  tellThose(false);
  if (!alive.expired()) tellThose(true);
}

void HoverStates::tellSoon() {
  if (std::exchange(scheduled_, true)) return;
  later_([this, alive = std::weak_ptr(alive_)] {
    if (alive.expired()) return;
    scheduled_ = false;
    tell();
  });
}

/// An action may change the panel, and with it what is tracked.
void HoverStates::tellThose(bool areInside) {
  const std::weak_ptr<bool> alive = alive_;
  std::vector<ViewId> views;
  for (const auto& [view, state] : states_) {
    if (state.isInside == areInside && state.toldInside != areInside) views.push_back(view);
  }
  for (const auto view : views) {
    if (alive.expired()) return;
    const auto found = states_.find(view);
    if (found == states_.end() || found->second.isInside != areInside) continue;
    found->second.toldInside = areInside;
    actions_.hover(view, areInside);
  }
}

}  // namespace quillmont
