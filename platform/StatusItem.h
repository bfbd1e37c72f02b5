// An item of the desktop's status bar: an icon that can be clicked.
#pragma once

#include <functional>
#include <string>

namespace quillmont {

/// Who asks for an action: any object, by identity alone. It is handed on, never looked into; null
/// where nobody is named.
using Sender = const void*;

/// The length of an item that is as wide as its content.
inline constexpr double kVariableStatusItemLength = -1.0;

/// The part of a status item that shows and is clicked. Main thread.
class StatusItemButton {
 public:
  virtual ~StatusItemButton() = default;

  /// Shows the system symbol `symbolName` in the bar's own colour or, where a bar does not tell it,
  /// so that it is legible on any. Readers of the screen are told `accessibilityDescription`.
  virtual void setImage(const std::string& symbolName,
                        const std::string& accessibilityDescription) = 0;

  /// What a click calls, with the button as sender.
  virtual void setAction(std::function<void(Sender)> action) = 0;
};

/// Its place in the bar is given up when it is destroyed. Main thread.
class StatusItem {
 public:
  virtual ~StatusItem() = default;

  /// Null where the desktop offers none; else it lives as long as the item.
  virtual StatusItemButton* button() = 0;
};

}  // namespace quillmont
