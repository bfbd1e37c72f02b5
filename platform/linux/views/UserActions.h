// What stands between the widgets and those whom their actions are for.
#pragma once

#include <QPointer>
#include <QWidget>
#include <memory>
#include <vector>

#include "platform/linux/views/PopoverWidget.h"
#include "platform/view/ViewActions.h"

namespace quillmont {

/// Hands actions on. An action may take away the very control that it came from, and may go on for
/// as long as an alert is open: what goes meanwhile lives on, out of sight, until it is over.
class UserActions : public ViewActions {
 public:
  /// `target` must outlive it.
  explicit UserActions(ViewActions& target);
  ~UserActions() override;

  void press(ViewId button) override;
  void toggle(ViewId control, bool isOn) override;
  void select(ViewId segments, std::size_t index) override;
  void hover(ViewId view, bool isInside) override;
  void dismiss(ViewId popover) override;

  void remove(QWidget* widget);
  void remove(std::unique_ptr<PopoverWidget> popover);

 private:
  template <class Action>
  void act(Action action);
  void deleteRemoved();

  ViewActions& target_;
  int running_ = 0;
  const std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
  QWidget* const attic_;
  std::vector<QPointer<QWidget>> widgets_;
  std::vector<std::unique_ptr<PopoverWidget>> popovers_;
};

}  // namespace quillmont
