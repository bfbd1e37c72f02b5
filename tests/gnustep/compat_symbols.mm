// Symbols by name, as figures of this file's own, in sizes like a Mac's.
#include <objc/runtime.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "tests/gnustep/compat_views.h"

namespace {

/// On a grid of 24 units to a symbol's height, y upwards; 20 units are as much as the letters'
/// size.
constexpr double kHeight = 24, kLetters = 20;

NSBezierPath* box(double x, double y, double width, double height, double radius = 1) {
  return [NSBezierPath bezierPathWithRoundedRect:NSMakeRect(x, y, width, height)
                                         xRadius:radius
                                         yRadius:radius];
}

NSBezierPath* disc(double x, double y, double radius) {
  return [NSBezierPath
      bezierPathWithOvalInRect:NSMakeRect(x - radius, y - radius, 2 * radius, 2 * radius)];
}

void strokeLine(NSBezierPath* path, double width) {
  [path setLineWidth:width];
  [path stroke];
}

void drawDrive(bool filled) {
  NSBezierPath* const arc = [NSBezierPath bezierPath];
  [arc appendBezierPathWithArcWithCenter:NSMakePoint(14, 12.5) radius:9 startAngle:0 endAngle:180];
  if (filled) {
    [arc closePath];
    [arc appendBezierPath:disc(14, 15, 2)];
    [arc appendBezierPath:box(1, 1.5, 26, 9, 3)];
    [arc appendBezierPath:box(5, 5.2, 13, 1.6)];
    [arc appendBezierPath:disc(22, 6, 1.2)];
    [arc setWindingRule:NSEvenOddWindingRule];
    [arc fill];
  } else {
    strokeLine(arc, 1.8);
    strokeLine(disc(14, 14, 2), 1.8);
    strokeLine(box(2, 2.5, 24, 7.5, 3), 1.8);
    [box(5, 5.5, 13, 1.5) fill];
  }
}

void drawLock(bool open) {
  const double left = open ? 12 : 4;
  [box(open ? 1 : 1.2, 2, 14, 11, 2.6) fill];
  NSBezierPath* const bow = [NSBezierPath bezierPath];
  [bow moveToPoint:NSMakePoint(left, 12)];
  [bow lineToPoint:NSMakePoint(left, 17)];
  [bow appendBezierPathWithArcWithCenter:NSMakePoint(left + 4.2, 17)
                                  radius:4.2
                              startAngle:180
                                endAngle:0
                               clockwise:YES];
  [bow lineToPoint:NSMakePoint(left + 8.4, open ? 14 : 12)];
  strokeLine(bow, 2.2);
}

void drawEject() {
  NSBezierPath* const triangle = [NSBezierPath bezierPath];
  [triangle moveToPoint:NSMakePoint(11, 21)];
  [triangle lineToPoint:NSMakePoint(21, 9.5)];
  [triangle lineToPoint:NSMakePoint(1, 9.5)];
  [triangle closePath];
  [triangle fill];
  [box(1, 3.5, 20, 3.4) fill];
}

void drawGear() {
  for (int tooth = 0; tooth < 8; ++tooth) {
    const double angle = M_PI * tooth / 4;
    [disc(12 + 8.5 * sin(angle), 12 + 8.5 * cos(angle), 2.2) fill];
  }
  strokeLine(disc(12, 12, 6), 5);
}

void drawPower() {
  NSBezierPath* const arc = [NSBezierPath bezierPath];
  [arc appendBezierPathWithArcWithCenter:NSMakePoint(11, 11)
                                  radius:8
                              startAngle:123
                                endAngle:57
                               clockwise:NO];
  strokeLine(arc, 2);
  [box(10, 12, 2, 10) fill];
}

void drawTrash() {
  [box(1.5, 17.5, 17, 1.8) fill];
  strokeLine(box(4, 2.5, 12, 15, 2), 1.8);
  for (const double x : {6.8, 9.2, 11.6}) [box(x, 5.5, 1.4, 9) fill];
}

struct Figure {
  const char* name;
  double width;
  void (*draw)();
};

constexpr std::array kFigures = {
    Figure{"opticaldiscdrive", 28, [] { drawDrive(false); }},
    Figure{"opticaldiscdrive.fill", 28, [] { drawDrive(true); }},
    Figure{"lock.fill", 16.4, [] { drawLock(false); }},
    Figure{"lock.open.fill", 24, [] { drawLock(true); }},
    Figure{"eject.fill", 22, drawEject},
    Figure{"gearshape.fill", 24, drawGear},
    Figure{"power", 22, drawPower},
    Figure{"trash", 20, drawTrash},
};

const Figure* figureOf(NSString* name) {
  for (const auto& figure : kFigures) {
    if ([name isEqualToString:[NSString stringWithUTF8String:figure.name]]) return &figure;
  }
  return nullptr;
}

}  // namespace

// What draws an image is a block; it draws in the colour that is set.
@interface GSTestDrawing : NSImageRep {
  BOOL (^_draw)(NSRect);
}
- (id)initWithSize:(NSSize)size block:(BOOL (^)(NSRect))block;
@end

@implementation GSTestDrawing
- (id)initWithSize:(NSSize)size block:(BOOL (^)(NSRect))block {
  self = [super init];
  if (self == nil) return nil;
  [self setSize:size];
  [self setAlpha:YES];
  _draw = Block_copy(block);
  return self;
}
- (void)dealloc {
  Block_release(_draw);
  [super dealloc];
}
- (id)copyWithZone:(NSZone*)zone {
  (void)zone;
  return [self retain];
}
- (BOOL)draw {
  return _draw(NSMakeRect(0, 0, [self size].width, [self size].height));
}
@end

static NSImage* imageOf(NSSize size, BOOL (^block)(NSRect)) {
  NSImage* const image = [[[NSImage alloc] initWithSize:size] autorelease];
  GSTestDrawing* const drawing = [[[GSTestDrawing alloc] initWithSize:size
                                                                block:block] autorelease];
  [image setCacheMode:NSImageCacheNever];
  [image addRepresentation:drawing];
  return image;
}

static NSImage* symbolOf(const Figure& figure, CGFloat pointSize) {
  const double unit = pointSize / kLetters;
  const auto draw = figure.draw;
  NSImage* const image = imageOf(NSMakeSize(figure.width * unit, kHeight * unit), ^BOOL(NSRect) {
    [NSGraphicsContext saveGraphicsState];
    NSAffineTransform* const scale = [NSAffineTransform transform];
    [scale scaleBy:unit];
    [scale concat];
    draw();
    [NSGraphicsContext restoreGraphicsState];
    return YES;
  });
  [image setTemplate:YES];
  [image setName:nil];
  return image;
}

// Names of images, which GNUstep's own are kept in a list of the whole program's.
static NSMapTable* symbolNames() {
  static NSMapTable* const result = [[NSMapTable alloc]
      initWithKeyOptions:NSPointerFunctionsOpaqueMemory | NSPointerFunctionsOpaquePersonality
            valueOptions:NSPointerFunctionsStrongMemory
                capacity:8];
  return result;
}

@implementation NSImageSymbolConfiguration
+ (instancetype)configurationWithPointSize:(CGFloat)pointSize weight:(NSFontWeight)weight {
  NSImageSymbolConfiguration* const result = [[[self alloc] init] autorelease];
  result->_pointSize = pointSize;
  result->_weight = weight;
  return result;
}
- (CGFloat)pointSize {
  return _pointSize;
}
- (NSFontWeight)weight {
  return _weight;
}
@end

@implementation NSImage (QMCompatViews)
+ (NSImage*)imageWithSystemSymbolName:(NSString*)name
             accessibilityDescription:(NSString*)description {
  const auto* const figure = figureOf(name);
  if (figure == nullptr) return nil;
  NSImage* const image = symbolOf(*figure, 13);
  [symbolNames() setObject:name forKey:image];
  [image setAccessibilityDescription:description];
  return image;
}
+ (NSImage*)imageWithSize:(NSSize)size
                  flipped:(BOOL)flipped
           drawingHandler:(BOOL (^)(NSRect))handler {
  (void)flipped;
  return imageOf(size, handler);
}
- (NSImage*)imageWithSymbolConfiguration:(NSImageSymbolConfiguration*)configuration {
  const auto* const figure = figureOf([symbolNames() objectForKey:self]);
  return figure != nullptr ? symbolOf(*figure, [configuration pointSize]) : nil;
}
@end

static NSMapTable* tints() {
  static NSMapTable* const result = [[NSMapTable alloc]
      initWithKeyOptions:NSPointerFunctionsOpaqueMemory | NSPointerFunctionsOpaquePersonality
            valueOptions:NSPointerFunctionsStrongMemory
                capacity:32];
  return result;
}

// Draws a template in its tint, in the middle of the view.
static void drawTinted(NSImageView* view, NSColor* tint) {
  NSImage* const image = [view image];
  const NSSize size = [image size];
  const NSRect bounds = [view bounds];
  [NSGraphicsContext saveGraphicsState];
  NSAffineTransform* const move = [NSAffineTransform transform];
  [move translateXBy:NSMidX(bounds) - size.width / 2 yBy:NSMidY(bounds) - size.height / 2];
  if ([view isFlipped]) {
    [move translateXBy:0 yBy:size.height];
    [move scaleXBy:1 yBy:-1];
  }
  [move concat];
  [tint set];
  [static_cast<NSImageRep*>([[image representations] lastObject]) draw];
  [NSGraphicsContext restoreGraphicsState];
}

@implementation NSImageView (QMCompatViews)
+ (void)load {
  Method own = class_getInstanceMethod(self, @selector(qmDrawRect:));
  Method original = class_getInstanceMethod(self, @selector(drawRect:));
  // The inherited one is every control's.
  if (!class_addMethod(self, @selector(drawRect:), method_getImplementation(own),
                       method_getTypeEncoding(own))) {
    method_exchangeImplementations(original, own);
  }
}
- (void)qmDrawRect:(NSRect)rect {
  NSColor* const tint = [self contentTintColor];
  if (tint != nil) return drawTinted(self, tint);
  [[self cell] drawWithFrame:[self bounds] inView:self];
  (void)rect;
}
- (NSColor*)contentTintColor {
  return [tints() objectForKey:self];
}
- (void)setContentTintColor:(NSColor*)color {
  [tints() setObject:color forKey:self];
  [self setNeedsDisplay:YES];
}
@end
