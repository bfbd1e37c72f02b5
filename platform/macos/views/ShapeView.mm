#include "platform/macos/views/ShapeView.h"

#include <cmath>

#include "platform/macos/views/shapes.h"

@implementation QMShapeView

- (BOOL)isFlipped {
  return YES;
}

- (BOOL)acceptsFirstMouse:(NSEvent*)event {
  return YES;
}

- (NSView*)hitTest:(NSPoint)point {
  return takesMouse ? [super hitTest:point] : nil;
}

- (void)drawRect:(NSRect)dirty {
  quillmont::drawShape(shape, outlineRect);
}

- (void)viewDidChangeEffectiveAppearance {
  [super viewDidChangeEffectiveAppearance];
  [self setNeedsDisplay:YES];
}

@end

namespace quillmont {

void ShapeView::take(const NativeProperties& properties) {
  view_.get()->shape = contentOf<NativeShape>(properties);
  [view_ setAlphaValue:properties.opacity];
  placeAgain();
}

void ShapeView::place(const Rect& frame) {
  MountedView::place(frame);
  view_.get()->outlineRect = bounds();
  [view_ setNeedsDisplay:YES];
}

/// In whole points, so that its drawing begins at a pixel where its frame does.
Reach ShapeView::reach() const {
  const auto exact = figureReach(view_.get()->shape);
  return {std::ceil(exact.left), std::ceil(exact.top), std::ceil(exact.right),
          std::ceil(exact.bottom)};
}

}  // namespace quillmont
