// One press on the status item does one thing.
#pragma once

namespace quillmont {

/// AppKit closes a transient popover by the very press that then comes to the status item as a
/// click; taken for a new one, it would open the popover again. Main thread.
class SwallowGuard {
 public:
  /// A popover has begun to close, within the event at hand.
  void closed();

  /// Whether the event at hand has closed a popover already.
  bool swallows() const;

 private:
  double closingPress_ = -1;  ///< when it was made, in seconds since the machine started
};

}  // namespace quillmont
