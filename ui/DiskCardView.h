// One mounted disk image as a card of the panel's list.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "monitor/DiskImage.h"
#include "platform/view/View.h"

namespace quillmont {

/// Shows an image and reports what the user wants of it; decides nothing itself. Which button is
/// under the pointer is its owner's to know, so that one card at a time shows a hovered one.
struct DiskCardView {
  DiskImage img;
  Binding<std::optional<std::string>> hoverEjectId;  ///< identity of the card whose button it is
  Binding<std::optional<std::string>> hoverLockId;   ///< likewise
  std::function<void()> onToggleExclude;
  std::function<void()> onEject;

  View body() const;

 private:
  View statusIcon() const;
  View textColumn() const;
  View statusLine() const;
  View excludeButton() const;
  View ejectButton() const;
};

/// Idle time in minutes and seconds, "90:00" after an hour and a half. It must be finite and in
/// the range of whole seconds: the program ends otherwise.
std::string idleTimeText(double idleSeconds);

}  // namespace quillmont
