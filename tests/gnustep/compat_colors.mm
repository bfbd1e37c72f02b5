// Colours with a meaning, and fonts, as a Mac has them.
#include "tests/gnustep/compat_views.h"

static BOOL isDarkNow = NO;

// A colour that is asked for anew whenever it is used.
@interface GSTestColor : NSColor {
  NSColor* (^_provider)(NSAppearance*);
}
- (id)initWithProvider:(NSColor* (^)(NSAppearance*))provider;
@end

@implementation GSTestColor
- (id)initWithProvider:(NSColor* (^)(NSAppearance*))provider {
  self = [super init];
  if (self != nil) _provider = Block_copy(provider);
  return self;
}
- (void)dealloc {
  Block_release(_provider);
  [super dealloc];
}
- (NSColor*)now {
  return _provider(
      [NSAppearance appearanceNamed:isDarkNow ? NSAppearanceNameDarkAqua : NSAppearanceNameAqua]);
}
- (id)copyWithZone:(NSZone*)zone {
  (void)zone;
  return [self retain];
}
- (BOOL)isEqual:(id)other {
  return self == other;
}
- (NSUInteger)hash {
  return reinterpret_cast<NSUInteger>(self);
}
- (NSString*)colorSpaceName {
  return [[self now] colorSpaceName];
}
- (NSColor*)colorUsingColorSpaceName:(NSString*)name {
  return [[self now] colorUsingColorSpaceName:name];
}
- (NSColor*)colorUsingColorSpaceName:(NSString*)name device:(NSDictionary*)device {
  return [[self now] colorUsingColorSpaceName:name device:device];
}
- (NSColor*)colorUsingColorSpace:(NSColorSpace*)space {
  return [[self now] colorUsingColorSpace:space];
}
- (NSColor*)colorWithAlphaComponent:(CGFloat)alpha {
  return [[self now] colorWithAlphaComponent:alpha];
}
- (CGFloat)alphaComponent {
  return [[self now] alphaComponent];
}
- (CGFloat)redComponent {
  return [[self now] redComponent];
}
- (CGFloat)greenComponent {
  return [[self now] greenComponent];
}
- (CGFloat)blueComponent {
  return [[self now] blueComponent];
}
- (void)set {
  [[self now] set];
}
- (void)setFill {
  [[self now] setFill];
}
- (void)setStroke {
  [[self now] setStroke];
}
@end

static NSColor* rgb(double red, double green, double blue) {
  return [NSColor colorWithDeviceRed:red / 255 green:green / 255 blue:blue / 255 alpha:1];
}

static NSColor* ink(double white, double alpha) {
  return [NSColor colorWithDeviceRed:white green:white blue:white alpha:alpha];
}

static NSColor* shades(NSColor* light, NSColor* dark) {
  [light retain];
  [dark retain];
  return [[[GSTestColor alloc] initWithProvider:^(NSAppearance*) {
    return isDarkNow ? dark : light;
  }] autorelease];
}

@implementation NSColor (QMCompatViews)
+ (NSColor*)labelColor {
  return shades(ink(0, 0.847), ink(1, 0.847));
}
+ (NSColor*)secondaryLabelColor {
  return shades(ink(0, 0.498), ink(1, 0.549));
}
+ (NSColor*)separatorColor {
  return shades(ink(0, 0.098), ink(1, 0.098));
}
+ (NSColor*)systemRedColor {
  return shades(rgb(255, 59, 48), rgb(255, 69, 58));
}
+ (NSColor*)systemOrangeColor {
  return shades(rgb(255, 149, 0), rgb(255, 159, 10));
}
+ (NSColor*)systemGreenColor {
  return shades(rgb(40, 205, 65), rgb(50, 215, 75));
}
+ (NSColor*)systemCyanColor {
  return shades(rgb(0, 192, 232), rgb(60, 211, 254));
}
+ (NSColor*)controlBackgroundColor {
  return shades(rgb(255, 255, 255), rgb(30, 30, 30));
}
+ (NSColor*)windowBackgroundColor {
  return shades(rgb(236, 236, 236), rgb(50, 50, 50));
}
+ (NSColor*)whiteColor {
  return ink(1, 1);
}
+ (NSColor*)blackColor {
  return ink(0, 1);
}
+ (NSColor*)clearColor {
  return ink(0, 0);
}
+ (NSColor*)colorWithName:(NSString*)name dynamicProvider:(NSColor* (^)(NSAppearance*))provider {
  (void)name;
  return [[[GSTestColor alloc] initWithProvider:provider] autorelease];
}
@end

@implementation NSColorSpace (QMCompatViews)
+ (NSColorSpace*)sRGBColorSpace {
  return [NSColorSpace deviceRGBColorSpace];
}
@end

@implementation NSAppearance (QMCompatViews)
- (void)performAsCurrentDrawingAppearance:(void (^)(void))block {
  block();
}
@end

@implementation NSFont (QMCompatViews)
+ (NSFont*)systemFontOfSize:(CGFloat)size weight:(NSFontWeight)weight {
  constexpr double kSemibold = 0.3;
  return weight < kSemibold ? [NSFont systemFontOfSize:size] : [NSFont boldSystemFontOfSize:size];
}
@end

static void tellAppearance(NSView* view) {
  [view viewDidChangeEffectiveAppearance];
  [view setNeedsDisplay:YES];
  for (NSView* inner in [view subviews]) tellAppearance(inner);
}

namespace quillmont::testing {

void setDark(bool dark) {
  isDarkNow = dark;
  for (NSWindow* window in [NSApp windows]) tellAppearance([window contentView]);
}

}  // namespace quillmont::testing

// There is one appearance for all windows.
@implementation NSWindow (QMCompatViews)
- (void)setAppearance:(NSAppearance*)appearance {
  quillmont::testing::setDark([[appearance name] isEqualToString:NSAppearanceNameDarkAqua]);
}
@end
