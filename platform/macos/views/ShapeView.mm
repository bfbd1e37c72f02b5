#include "platform/macos/views/ShapeView.h"

#include <algorithm>
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
namespace {

/// Beyond so many of its radii nothing is left of a shadow.
constexpr double kShadowReach = 3;

}  // namespace

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
MountedView::Reach ShapeView::reach() const {
  const auto& shape = view_.get()->shape;
  const double line = shape.stroke ? std::ceil(shape.stroke->lineWidth / 2) : 0;
  if (!shape.shadow) return {line, line, line, line};
  const double blurred = kShadowReach * shape.shadow->radius;
  const auto most = [line](double length) { return std::max(line, std::ceil(length)); };
  const auto& offset = shape.shadow->offset;
  return {most(blurred - offset.x), most(blurred - offset.y), most(blurred + offset.x),
          most(blurred + offset.y)};
}

}  // namespace quillmont
