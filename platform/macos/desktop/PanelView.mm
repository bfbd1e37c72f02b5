#include "platform/macos/desktop/PanelView.h"

namespace {

constexpr unichar kEscape = 0x1B;

bool isEscape(NSEvent* event) {
  NSString* const characters = [event characters];
  return [characters length] == 1 && [characters characterAtIndex:0] == kEscape;
}

NSView* firstKeyViewIn(NSView* view) {
  for (NSView* child in [view subviews]) {
    if ([child isHidden]) continue;
    if ([child canBecomeKeyView]) return child;
    if (NSView* const found = firstKeyViewIn(child)) return found;
  }
  return nil;
}

/// On a copy: what is told may do away with the view.
void tell(const std::function<void()>& handler) {
  const auto copy = handler;
  if (copy) copy();
}

}  // namespace

@implementation QMPanelView

- (BOOL)isFlipped {
  return YES;
}

- (BOOL)acceptsFirstResponder {
  return YES;
}

/// No control has the keyboard before Tab gives it one: Space would press it unseen. From the panel
/// Tab goes to the first control, and from there on from one to the next.
- (BOOL)canBecomeKeyView {
  return NO;
}

- (NSView*)nextValidKeyView {
  return firstKeyViewIn(self);
}

- (NSView*)previousValidKeyView {
  return [[self nextValidKeyView] previousValidKeyView];
}

- (void)keyDown:(NSEvent*)event {
  if (isEscape(event)) {
    tell(onEscape_);
  } else {
    [super keyDown:event];
  }
}

/// What Escape comes to in some controls, and Command-period in all.
- (void)cancelOperation:(id)sender {
  (void)sender;
  tell(onEscape_);
}

- (void)viewDidChangeEffectiveAppearance {
  [super viewDidChangeEffectiveAppearance];
  tell(onAppearance_);
}

- (void)viewDidChangeBackingProperties {
  [super viewDidChangeBackingProperties];
  tell(onScale_);
}

@end
