#include "platform/linux/desktop/SwallowGuard.h"

#include <utility>

namespace quillmont {

void SwallowGuard::closedByPress(std::uint32_t button) {
  heldButton_ = button;
  graceEnd_ = std::nullopt;
}

void SwallowGuard::closedByLeaving(Time now) {
  heldButton_ = std::nullopt;
  graceEnd_ = now + kGrace;
}

void SwallowGuard::pressed() {
  *this = {};
}

void SwallowGuard::released(std::uint32_t button, Time now) {
  if (heldButton_ != button) return;
  heldButton_ = std::nullopt;
  graceEnd_ = now + kGrace;
}

bool SwallowGuard::swallows(Time now) {
  const bool result = heldButton_ || (graceEnd_ && now <= *graceEnd_);
  *this = {};
  return result;
}

}  // namespace quillmont
