// The desktop's colours as AppKit has them. Main thread.
#pragma once

#import <AppKit/AppKit.h>

#include "platform/view/Color.h"

namespace quillmont {

/// A colour that is another one in the dark, by itself; autoreleased.
NSColor* colorFor(const Color& color);

/// The same colour, `factor` times as opaque as it is of itself, in light and in dark.
NSColor* withOpacity(NSColor* color, double factor);

}  // namespace quillmont
