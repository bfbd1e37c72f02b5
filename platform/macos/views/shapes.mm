#include "platform/macos/views/shapes.h"

#include <algorithm>

#include "platform/macos/Retained.h"
#include "platform/macos/views/theme.h"
#include "platform/view/figures.h"

namespace quillmont {
namespace {

NSPoint sum(NSPoint point, NSPoint direction, double length) {
  return NSMakePoint(point.x + direction.x * length, point.y + direction.y * length);
}

NSRect largestSquare(NSRect rect) {
  const double side = std::min(rect.size.width, rect.size.height);
  return NSInsetRect(rect, (rect.size.width - side) / 2, (rect.size.height - side) / 2);
}

/// A shadow's offset points up, whichever way the view's coordinates do, and its blur is twice its
/// radius.
void setShadow(const Shadow& shadow) {
  const auto cast = adopt([[NSShadow alloc] init]);
  [cast setShadowColor:colorFor(shadow.color)];
  [cast setShadowOffset:NSMakeSize(shadow.offset.x, -shadow.offset.y)];
  [cast setShadowBlurRadius:2 * shadow.radius];
  [cast set];
}

}  // namespace

NSBezierPath* continuousRectangle(NSRect rect, double cornerRadius) {
  const auto curve = continuousCorner({rect.size.width, rect.size.height}, cornerRadius);
  const NSPoint right = NSMakePoint(1, 0), down = NSMakePoint(0, 1);
  const NSPoint left = NSMakePoint(-1, 0), up = NSMakePoint(0, -1);
  NSBezierPath* const path = [NSBezierPath bezierPath];
  [path moveToPoint:sum(rect.origin, down, curve.bend)];
  const auto corner = [&](double x, double y, NSPoint from, NSPoint to) {
    const NSPoint at = NSMakePoint(x, y);
    [path lineToPoint:sum(at, from, curve.bend)];
    [path curveToPoint:sum(at, to, curve.bend)
         controlPoint1:sum(at, from, curve.hold)
         controlPoint2:sum(at, to, curve.hold)];
  };
  corner(NSMinX(rect), NSMinY(rect), down, right);
  corner(NSMaxX(rect), NSMinY(rect), left, down);
  corner(NSMaxX(rect), NSMaxY(rect), up, left);
  corner(NSMinX(rect), NSMaxY(rect), right, up);
  [path closePath];
  return path;
}

NSBezierPath* outlineOf(const NativeShape& shape, NSRect rect) {
  switch (shape.kind) {
    case NativeShape::Kind::rectangle:
      return [NSBezierPath bezierPathWithRect:rect];
    case NativeShape::Kind::circle:
      return [NSBezierPath bezierPathWithOvalInRect:largestSquare(rect)];
    case NativeShape::Kind::roundedRectangle:
      return continuousRectangle(rect, shape.cornerRadius);
  }
  return [NSBezierPath bezierPathWithRect:rect];
}

void drawShape(const NativeShape& shape, NSRect rect) {
  if (rect.size.width <= 0 || rect.size.height <= 0) return;
  NSBezierPath* const outline = outlineOf(shape, rect);
  if (shape.fill) {
    [NSGraphicsContext saveGraphicsState];
    if (shape.shadow) setShadow(*shape.shadow);
    [colorFor(*shape.fill) setFill];
    [outline fill];
    [NSGraphicsContext restoreGraphicsState];
  }
  if (shape.stroke && shape.stroke->lineWidth > 0) {
    [colorFor(shape.stroke->color) setStroke];
    [outline setLineWidth:shape.stroke->lineWidth];
    [outline stroke];
  }
}

}  // namespace quillmont
