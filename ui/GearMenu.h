// The small menu behind the panel's gear button: quit and uninstall.
#pragma once

#include "platform/Host.h"
#include "platform/view/View.h"

namespace quillmont {

/// Main thread. Both actions close the menu before they do anything else.
class GearMenu {
 public:
  GearMenu(const Host& host, Binding<bool> isShown) : host_(host), isShown_(std::move(isShown)) {}

  View body() const;

  /// Closes the menu and has the application terminate.
  void quit() const;

  /// Closes the menu, asks the user, and on a yes starts the bundle's uninstall script, which does
  /// all the rest; the program neither waits for it nor ends by itself. Returns when the question
  /// is answered.
  void uninstall() const;

 private:
  Host host_;
  Binding<bool> isShown_;
};

}  // namespace quillmont
