// The missing parts of AppKit's views, controls, fonts and colours.
#pragma once

#import <AppKit/AppKit.h>

#define NSBitmapImageFileTypePNG NSPNGFileType
#define NSButtonTypeSwitch NSSwitchButton
#define NSButtonTypeMomentaryChange NSMomentaryChangeButton
#define NSButtonTypePushOnPushOff NSPushOnPushOffButton
#define NSCompositingOperationSourceOver NSCompositeSourceOver

enum { NSSegmentDistributionFit = 0, NSSegmentDistributionFillEqually = 2 };
typedef NSInteger NSSegmentDistribution;

@interface NSFont (QMCompatViews)
+ (NSFont*)systemFontOfSize:(CGFloat)size weight:(NSFontWeight)weight;
@end

@interface NSColorSpace (QMCompatViews)
+ (NSColorSpace*)sRGBColorSpace;
@end

@interface NSColor (QMCompatViews)
+ (NSColor*)separatorColor;
+ (NSColor*)systemCyanColor;
+ (NSColor*)colorWithName:(NSString*)name dynamicProvider:(NSColor* (^)(NSAppearance*))provider;
@end

@interface NSAppearance (QMCompatViews)
- (void)performAsCurrentDrawingAppearance:(void (^)(void))block;
@end

@interface NSImageSymbolConfiguration : NSObject {
  CGFloat _pointSize;
  NSFontWeight _weight;
}
+ (instancetype)configurationWithPointSize:(CGFloat)pointSize weight:(NSFontWeight)weight;
- (CGFloat)pointSize;
- (NSFontWeight)weight;
@end

@interface NSImage (QMCompatViews)
+ (NSImage*)imageWithSystemSymbolName:(NSString*)name
             accessibilityDescription:(NSString*)description;
+ (NSImage*)imageWithSize:(NSSize)size
                  flipped:(BOOL)flipped
           drawingHandler:(BOOL (^)(NSRect))handler;
- (NSImage*)imageWithSymbolConfiguration:(NSImageSymbolConfiguration*)configuration;
@end

@interface NSImageView (QMCompatViews)
- (NSColor*)contentTintColor;
- (void)setContentTintColor:(NSColor*)color;
@end

@interface NSView (QMCompatViews)
- (NSEdgeInsets)alignmentRectInsets;
- (NSRect)alignmentRectForFrame:(NSRect)frame;
- (NSRect)frameForAlignmentRect:(NSRect)rect;
- (NSSize)intrinsicContentSize;
- (void)viewDidChangeEffectiveAppearance;
- (NSString*)accessibilityLabel;
- (void)setAccessibilityLabel:(NSString*)label;
- (NSString*)accessibilityHelp;
- (void)setAccessibilityHelp:(NSString*)help;
- (id)accessibilityValue;
- (NSString*)accessibilityRole;
- (void)setAccessibilityRole:(NSString*)role;
- (NSString*)accessibilitySubrole;
- (void)setAccessibilitySubrole:(NSString*)subrole;
- (BOOL)isAccessibilityElement;
- (void)setAccessibilityElement:(BOOL)isElement;
@end

@interface NSView (QMCompatPointer)
- (void)addTrackingArea:(NSTrackingArea*)area;
- (void)removeTrackingArea:(NSTrackingArea*)area;
- (NSArray*)trackingAreas;
@end

@interface NSCell (QMCompatViews)
- (void)setTruncatesLastVisibleLine:(BOOL)truncates;
@end

@interface NSTextField (QMCompatViews)
- (void)setLineBreakMode:(NSLineBreakMode)mode;
- (NSInteger)maximumNumberOfLines;
- (void)setMaximumNumberOfLines:(NSInteger)count;
@end

@interface NSSegmentedControl (QMCompatViews)
- (void)setTrackingMode:(NSSegmentSwitchTracking)mode;
- (void)setSegmentDistribution:(NSSegmentDistribution)distribution;
@end

@interface NSScrollView (QMCompatViews)
- (void)setScrollerStyle:(NSScrollerStyle)style;
- (void)setHorizontalScrollElasticity:(NSScrollElasticity)elasticity;
@end

@interface NSWindow (QMCompatViews)
- (void)setAppearance:(NSAppearance*)appearance;
@end

@interface NSWorkspace (QMCompatViews)
- (BOOL)accessibilityDisplayShouldReduceMotion;
@end

namespace quillmont::testing {

/// Light or dark for all windows from now on, of which all views are told.
void setDark(bool dark);

}  // namespace quillmont::testing
