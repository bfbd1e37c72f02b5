#include "platform/macos/views/PopoverView.h"

@implementation QMPopoverKeeper

- (BOOL)popoverShouldClose:(NSPopover*)popover {
  return mayClose ? mayClose() : YES;
}

- (void)popoverWillClose:(NSNotification*)notification {
  const auto told = onClosing;
  if (told) told();
}

@end

namespace quillmont {
namespace {

/// An edge in the coordinates of a flipped view.
NSRectEdge flipped(RectEdge edge) {
  switch (edge) {
    case RectEdge::minX:
      return NSMinXEdge;
    case RectEdge::minY:
      return NSMaxYEdge;
    case RectEdge::maxX:
      return NSMaxXEdge;
    case RectEdge::maxY:
      return NSMinYEdge;
  }
  return NSMinYEdge;
}

NSRectEdge edgeIn(NSView* view, RectEdge edge) {
  return [view isFlipped] ? flipped(edge) : static_cast<NSRectEdge>(edge);
}

}  // namespace

PopoverView::PopoverView(const MountedView& anchor, ViewId view, ViewActions& actions)
    : anchor_(anchor),
      id_(view),
      actions_(actions),
      popover_(adopt([[NSPopover alloc] init])),
      controller_(adopt([[NSViewController alloc] initWithNibName:nil bundle:nil])),
      content_(adopt([[QMPanelArea alloc] initWithFrame:NSZeroRect])),
      keeper_(adopt([[QMPopoverKeeper alloc] init])) {
  [controller_ setView:content_];
  [popover_ setContentViewController:controller_];
  [popover_ setBehavior:NSPopoverBehaviorTransient];
  [popover_ setDelegate:keeper_];
  keeper_.get()->onClosing = [this] { closes(); };
  keeper_.get()->mayClose = [this] { return !isPressOnAnchor(); };
}

PopoverView::~PopoverView() {
  close();
}

void PopoverView::take(const NativeProperties& properties) {
  edge_ = contentOf<NativePopover>(properties).arrowEdge;
}

void PopoverView::place(const Rect& frame) {
  const NSSize size = NSMakeSize(frame.width, frame.height);
  if (!isShown()) [content_ setFrameSize:size];
  [controller_ setPreferredContentSize:size];
}

void PopoverView::present() {
  NSView* const view = anchor_.view();
  if (closed_ || ![[view window] isVisible]) return;
  const auto place = anchor_.bounds();
  if (!isShown()) {
    [popover_ showRelativeToRect:place ofView:view preferredEdge:edgeIn(view, edge_)];
  } else {
    [popover_ setPositioningRect:place];
  }
}

void PopoverView::dismiss() {
  if (closed_) return;
  close();
  actions_.dismiss(id_);
}

/// AppKit is closing it, and is not to be asked for that once more.
void PopoverView::closes() {
  if (closed_) return;
  disconnect();
  actions_.dismiss(id_);
}

void PopoverView::close() {
  const bool isOpen = !closed_ && isShown();
  disconnect();
  if (isOpen) [popover_ close];
}

/// What AppKit has to say from now on, it says to nobody.
void PopoverView::disconnect() {
  closed_ = true;
  keeper_.get()->onClosing = nullptr;
  keeper_.get()->mayClose = nullptr;
  [popover_ setDelegate:nil];
}

/// Closed by the press, it would be opened again by the release.
bool PopoverView::isPressOnAnchor() const {
  NSEvent* const event = [NSApp currentEvent];
  NSView* const view = anchor_.view();
  if ([event type] != NSEventTypeLeftMouseDown || [event window] != [view window]) return false;
  const NSPoint point = [view convertPoint:[event locationInWindow] fromView:nil];
  return [view mouse:point inRect:anchor_.bounds()];
}

}  // namespace quillmont
