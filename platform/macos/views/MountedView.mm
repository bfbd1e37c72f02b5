#include "platform/macos/views/MountedView.h"

namespace quillmont {

Point MountedView::childOrigin() const {
  const auto origin = bounds().origin;
  return {origin.x, origin.y};
}

/// What a control looks like may be smaller than its view; the frame is that of its looks.
void MountedView::place(const Rect& frame) {
  frame_ = frame;
  const auto beyond = reach();
  const auto looks = NSMakeRect(frame.x - beyond.left, frame.y - beyond.top,
                                frame.width + beyond.left + beyond.right,
                                frame.height + beyond.top + beyond.bottom);
  [view() setFrame:[view() frameForAlignmentRect:looks]];
}

void MountedView::leave() {
  // AppKit may be in the midst of an event for it.
  [[view() retain] autorelease];
  [view() removeFromSuperview];
}

NSRect MountedView::bounds() const {
  const auto beyond = reach();
  auto looks = [view() alignmentRectForFrame:[view() bounds]];
  looks.origin.x += beyond.left;
  looks.origin.y += beyond.top;
  looks.size.width -= beyond.left + beyond.right;
  looks.size.height -= beyond.top + beyond.bottom;
  return looks;
}

}  // namespace quillmont
