#include "platform/linux/views/UserActions.h"

#include <utility>

namespace quillmont {

UserActions::UserActions(ViewActions& target) : target_(target), attic_(new QWidget) {}

UserActions::~UserActions() {
  popovers_.clear();
  if (running_ > 0) {
    attic_->deleteLater();
  } else {
    delete attic_;
  }
}

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

void UserActions::remove(QWidget* widget) {
  widget->hide();
  widget->setParent(attic_);
  widgets_.emplace_back(widget);
  if (running_ == 0) deleteRemoved();
}

void UserActions::remove(std::unique_ptr<PopoverWidget> popover) {
  popover->close();
  popovers_.push_back(std::move(popover));
  if (running_ == 0) deleteRemoved();
}

/// The panel itself may go while the action is under way.
template <class Action>
void UserActions::act(Action action) {
  const std::weak_ptr<bool> alive = alive_;
  ++running_;
  action();
  if (alive.expired()) return;
  if (--running_ == 0) deleteRemoved();
}

/// Not at once: the event that the last action came with is still being handled.
void UserActions::deleteRemoved() {
  for (const auto& widget : std::exchange(widgets_, {})) {
    if (widget) widget->deleteLater();
  }
  popovers_.clear();
}

}  // namespace quillmont
