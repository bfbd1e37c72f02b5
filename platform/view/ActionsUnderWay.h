// What stands between native views and those whom the user's actions are for.
#pragma once

#include <memory>

#include "platform/view/ViewActions.h"

namespace quillmont {

/// Hands actions on. An action may take away the very control that it came from, and may go on for
/// as long as an alert is open: what goes meanwhile has to live on until it is over. Main thread.
class ActionsUnderWay : public ViewActions {
 public:
  /// `target` must outlive it.
  explicit ActionsUnderWay(ViewActions& target) : target_(target) {}

  void press(ViewId button) override;
  void toggle(ViewId control, bool isOn) override;
  void select(ViewId segments, std::size_t index) override;
  void hover(ViewId view, bool isInside) override;
  void dismiss(ViewId popover) override;

 protected:
  bool isRunning() const { return running_ > 0; }

  /// The outermost action is over: what was kept for its sake may go.
  virtual void over() = 0;

 private:
  template <class Action>
  void act(Action action);

  ViewActions& target_;
  int running_ = 0;
  const std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace quillmont
