// What the user does to native views.
#pragma once

#include <cstddef>

#include "platform/view/NativeView.h"

namespace quillmont {

/// Takes the user's actions from the native side. A view that has gone meanwhile is passed over.
/// Main thread.
class ViewActions {
 public:
  virtual ~ViewActions() = default;
  virtual void press(ViewId button) = 0;
  virtual void toggle(ViewId control, bool isOn) = 0;
  virtual void select(ViewId segments, std::size_t index) = 0;
  virtual void hover(ViewId view, bool isInside) = 0;
  /// The popover is to close: the user has turned away from it.
  virtual void dismiss(ViewId popover) = 0;
};

}  // namespace quillmont
