#include "platform/macos/views/PanelArea.h"

@implementation QMPanelArea

- (BOOL)isFlipped {
  return YES;
}

- (BOOL)acceptsFirstMouse:(NSEvent*)event {
  return YES;
}

- (NSView*)hitTest:(NSPoint)point {
  return _isMouseLetThrough ? nil : [super hitTest:point];
}

- (void)setMouseLetThrough:(BOOL)letThrough {
  _isMouseLetThrough = letThrough;
}

- (void)viewDidMoveToWindow {
  [super viewDidMoveToWindow];
  const auto told = onWindowChange;
  if (told) told();
}

@end
