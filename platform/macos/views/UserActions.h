// What stands between the views and those whom the user's actions are for.
#pragma once

#include <memory>
#include <vector>

#include "platform/macos/views/MountedView.h"
#include "platform/view/ActionsUnderWay.h"

namespace quillmont {

/// What goes while an action is under way lives on, out of sight, until it is over.
class UserActions : public ActionsUnderWay {
 public:
  using ActionsUnderWay::ActionsUnderWay;

  /// Keeps what has left the screen for as long as an action is under way.
  void remove(std::unique_ptr<MountedView> view);

 private:
  void over() override;

  std::vector<std::unique_ptr<MountedView>> removed_;
};

}  // namespace quillmont
