#include "platform/linux/views/UserActions.h"

#include <utility>

namespace quillmont {

UserActions::UserActions(ViewActions& target) : ActionsUnderWay(target), attic_(new QWidget) {}

UserActions::~UserActions() {
  popovers_.clear();
  if (isRunning()) {
    attic_->deleteLater();
  } else {
    delete attic_;
  }
}

void UserActions::remove(QWidget* widget) {
  widget->hide();
  widget->setParent(attic_);
  widgets_.emplace_back(widget);
  if (!isRunning()) over();
}

void UserActions::remove(std::unique_ptr<PopoverWidget> popover) {
  popover->close();
  popovers_.push_back(std::move(popover));
  if (!isRunning()) over();
}

/// Not at once: the event that the last action came with is still being handled.
void UserActions::over() {
  for (const auto& widget : std::exchange(widgets_, {})) {
    if (widget) widget->deleteLater();
  }
  popovers_.clear();
}

}  // namespace quillmont
