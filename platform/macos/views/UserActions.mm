#include "platform/macos/views/UserActions.h"

#include <utility>

namespace quillmont {

void UserActions::press(ViewId button) {
  act([&] { target_.press(button); });
}

void UserActions::toggle(ViewId control, bool isOn) {
  act([&] { target_.toggle(control, isOn); });
}

void UserActions::select(ViewId segments, std::size_t index) {
  act([&] { target_.select(segments, index); });
}

void UserActions::hover(ViewId view, bool isInside) {
  act([&] { target_.hover(view, isInside); });
}

void UserActions::dismiss(ViewId popover) {
  act([&] { target_.dismiss(popover); });
}

void UserActions::remove(std::unique_ptr<MountedView> view) {
  if (running_ > 0) removed_.push_back(std::move(view));
}

/// The panel itself may go while the action is under way.
template <class Action>
void UserActions::act(Action action) {
  const std::weak_ptr<bool> alive = alive_;
  ++running_;
  action();
  if (alive.expired()) return;
  if (--running_ == 0) std::exchange(removed_, {}).clear();
}

}  // namespace quillmont
