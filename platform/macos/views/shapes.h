// Figures and their shadows, in flipped views. Lengths in points. Main thread.
#pragma once

#import <AppKit/AppKit.h>

#include "platform/view/NativeView.h"

namespace quillmont {

/// A rectangle with corners that bend gradually: they begin before a circle of that radius would,
/// and are as deep in the middle. Autoreleased.
NSBezierPath* continuousRectangle(NSRect rect, double cornerRadius);

/// The outline of `shape` in `rect`; autoreleased.
NSBezierPath* outlineOf(const NativeShape& shape, NSRect rect);

/// Paints shadow, fill and stroke, in the colours of now.
void drawShape(const NativeShape& shape, NSRect rect);

}  // namespace quillmont
