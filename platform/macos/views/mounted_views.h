// The views of a mount, for Objective-C++ sources.
#pragma once

#import <AppKit/AppKit.h>

#include "platform/macos/views/AppKitMount.h"

namespace quillmont {

/// The panel: a flipped view with a transparent ground that always has the panel's size. Whoever
/// puts it into a window need not keep it; the mount bears that either goes first.
NSView* panelView(const AppKitMount& mount);

/// The view that shows `view`; of a popover, what it shows. Nil when there is none of that name.
NSView* mountedView(const AppKitMount& mount, ViewId view);

}  // namespace quillmont
