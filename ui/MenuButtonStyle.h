// The looks of the gear menu's entries.
#pragma once

#include "platform/view/View.h"

namespace quillmont {

/// A destructive entry is red; the one under the pointer is highlighted. Padding and width are the
/// label's own.
struct MenuButtonStyle {
  View makeBody(const ButtonConfiguration& configuration) const;
  void connect(StateScope& scope) { scope.remember(isHovered_); }

 private:
  State<bool> isHovered_{false};
};

}  // namespace quillmont
