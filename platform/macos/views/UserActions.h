// What stands between the views and those whom the user's actions are for.
#pragma once

#include <memory>
#include <vector>

#include "platform/macos/views/MountedView.h"
#include "platform/view/ViewActions.h"

namespace quillmont {

/// Hands actions on. An action may take away the very control that it came from, and may go on for
/// as long as an alert is open: what goes meanwhile lives on, out of sight, until it is over.
class UserActions : public ViewActions {
 public:
  /// `target` must outlive it.
  explicit UserActions(ViewActions& target) : target_(target) {}

  void press(ViewId button) override;
  void toggle(ViewId control, bool isOn) override;
  void select(ViewId segments, std::size_t index) override;
  void hover(ViewId view, bool isInside) override;
  void dismiss(ViewId popover) override;

  /// Keeps what has left the screen for as long as an action is under way.
  void remove(std::unique_ptr<MountedView> view);

 private:
  template <class Action>
  void act(Action action);

  ViewActions& target_;
  int running_ = 0;
  const std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
  std::vector<std::unique_ptr<MountedView>> removed_;
};

}  // namespace quillmont
