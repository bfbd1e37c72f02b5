// A status item in the menu bar.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/StatusItem.h"

namespace quillmont {

/// Acts on the press, as menus do. Main thread.
class MacStatusItem : public StatusItem, public StatusItemButton {
 public:
  /// `swallows` is asked at each click whether it is to be dropped.
  MacStatusItem(double length, std::function<bool()> swallows);
  ~MacStatusItem() override;
  MacStatusItem(const MacStatusItem&) = delete;
  MacStatusItem& operator=(const MacStatusItem&) = delete;

  /// Null if AppKit made the item without one.
  StatusItemButton* button() override;

  /// A symbol that the system lacks is replaced by the description, as the item's title.
  void setImage(const std::string& symbolName,
                const std::string& accessibilityDescription) override;
  void setAction(std::function<void(Sender)> action) override;

  /// AppKit's view of the button, an NSView; null without a button.
  void* view() const;

 private:
  struct State;
  class Native;
  const std::shared_ptr<State> state_;
  std::unique_ptr<Native> native_;
};

}  // namespace quillmont
