#include "platform/macos/views/UserActions.h"

#include <utility>

namespace quillmont {

void UserActions::remove(std::unique_ptr<MountedView> view) {
  if (isRunning()) removed_.push_back(std::move(view));
}

void UserActions::over() {
  std::exchange(removed_, {}).clear();
}

}  // namespace quillmont
