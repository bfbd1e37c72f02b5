#include "platform/view/ActionsUnderWay.h"

namespace quillmont {

void ActionsUnderWay::press(ViewId button) {
  act([&] { target_.press(button); });
}

void ActionsUnderWay::toggle(ViewId control, bool isOn) {
  act([&] { target_.toggle(control, isOn); });
}

void ActionsUnderWay::select(ViewId segments, std::size_t index) {
  act([&] { target_.select(segments, index); });
}

void ActionsUnderWay::hover(ViewId view, bool isInside) {
  act([&] { target_.hover(view, isInside); });
}

void ActionsUnderWay::dismiss(ViewId popover) {
  act([&] { target_.dismiss(popover); });
}

/// The panel itself may go while the action is under way.
template <class Action>
void ActionsUnderWay::act(Action action) {
  const std::weak_ptr<bool> alive = alive_;
  ++running_;
  action();
  if (alive.expired()) return;
  if (--running_ == 0) over();
}

}  // namespace quillmont
