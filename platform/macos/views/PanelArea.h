// A view that holds others.
#pragma once

#import <AppKit/AppKit.h>

#include <functional>

/// Its coordinates begin at the top. Draws nothing.
@interface QMPanelArea : NSView {
 @public
  std::function<void()> onWindowChange;  ///< it has come into a window, or out of it
 @private
  BOOL _isMouseLetThrough;
}

/// Whether the mouse goes to what is behind it and all in it.
- (void)setMouseLetThrough:(BOOL)letThrough;

@end
