// The user's hand on the panel.
#pragma once

#include <string>

#include "tests/support/DesktopLab.h"
#include "tests/support/StatusNotifierBar.h"

namespace quillmont::testing {

/// All volumes of the soak are named like this, and nothing else on the panel is.
constexpr char kLabelsBegin[] = "Image";

/// Presses the panel's controls without the pointer, so that a card need not be scrolled to. The
/// panel stays open. A control that is not there, as of a card that has just gone, is not pressed
/// and answers false.
class PanelHand {
 public:
  explicit PanelHand(DesktopLab& lab) : lab_(lab), bar_(lab.busAddress()) {}

  /// Waits until the program has announced its status item; throws a Finding if it does not.
  void open();

  bool eject(const std::string& label) { return pressOnCard(label, {"立即安全推出"}); }

  /// Excludes the image, or lets it be ejected again.
  bool toggleExclusion(const std::string& label) {
    return pressOnCard(label, {"防止自动推出", "允许自动推出"});
  }

  /// Turns automatic ejection off or on.
  bool flipSwitch();

 private:
  bool isOpen();
  bool pressOnCard(const std::string& label, const std::vector<std::string>& helps);

  DesktopLab& lab_;
  StatusNotifierBar bar_;
};

}  // namespace quillmont::testing
