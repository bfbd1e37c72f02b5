// A button that is drawn by its heirs, or by its subviews alone.
#pragma once

#import <AppKit/AppKit.h>

#include <functional>

/// Pressed by the mouse, by Space and by readers of the screen. The mouse is followed from event to
/// event, so that the run loop goes on meanwhile.
@interface QMPressArea : NSButton {
 @public
  std::function<void()> onPress;     ///< may be the end of the view's owner
  std::function<void()> onPressing;  ///< isPressing is another
 @private
  BOOL _isFollowing;  ///< since the mouse went down on it
  BOOL _isPressing;
}

/// The mouse is down on it, and would press it if it were released now.
- (BOOL)isPressing;

/// The mouse will not press it, wherever it is released.
- (void)letGo;

/// The outline of what has the keyboard.
- (NSBezierPath*)focusOutline;

@end
