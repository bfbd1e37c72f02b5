// What a panel's own window holds.
#pragma once

#import <AppKit/AppKit.h>

#include <functional>

/// A flipped, empty view that has the keyboard while nothing in it has, so that Escape always comes
/// to it in the end.
@interface QMPanelView : NSView {
 @public
  std::function<void()> onEscape_;
  std::function<void()> onAppearance_;  ///< light or dark
  std::function<void()> onScale_;       ///< another screen
}
@end
