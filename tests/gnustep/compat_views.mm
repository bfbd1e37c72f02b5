#include "tests/gnustep/compat_views.h"

// What a Mac knows of a view beside its own members.
static NSMutableDictionary* notesOn(NSView* view) {
  static NSMapTable* const all = [[NSMapTable alloc]
      initWithKeyOptions:NSPointerFunctionsOpaqueMemory | NSPointerFunctionsOpaquePersonality
            valueOptions:NSPointerFunctionsStrongMemory
                capacity:64];
  NSMutableDictionary* notes = [all objectForKey:view];
  if (notes == nil) {
    notes = [NSMutableDictionary dictionary];
    [all setObject:notes forKey:view];
  }
  return notes;
}

static void note(NSView* view, NSString* key, id value) {
  if (value != nil) {
    [notesOn(view) setObject:value forKey:key];
  } else {
    [notesOn(view) removeObjectForKey:key];
  }
}

@implementation NSView (QMCompatViews)
- (NSEdgeInsets)alignmentRectInsets {
  return NSEdgeInsetsMake(0, 0, 0, 0);
}
- (NSRect)alignmentRectForFrame:(NSRect)frame {
  const auto insets = [self alignmentRectInsets];
  return NSMakeRect(frame.origin.x + insets.left, frame.origin.y + insets.top,
                    frame.size.width - insets.left - insets.right,
                    frame.size.height - insets.top - insets.bottom);
}
- (NSRect)frameForAlignmentRect:(NSRect)rect {
  const auto insets = [self alignmentRectInsets];
  return NSMakeRect(rect.origin.x - insets.left, rect.origin.y - insets.top,
                    rect.size.width + insets.left + insets.right,
                    rect.size.height + insets.top + insets.bottom);
}
- (NSSize)intrinsicContentSize {
  return NSMakeSize(-1, -1);
}
- (void)viewDidChangeEffectiveAppearance {
}
- (NSString*)accessibilityLabel {
  return [notesOn(self) objectForKey:@"label"];
}
- (void)setAccessibilityLabel:(NSString*)label {
  note(self, @"label", label);
}
- (NSString*)accessibilityHelp {
  return [notesOn(self) objectForKey:@"help"];
}
- (void)setAccessibilityHelp:(NSString*)help {
  note(self, @"help", help);
}
- (id)accessibilityValue {
  return nil;
}
- (NSString*)accessibilityRole {
  return [notesOn(self) objectForKey:@"role"];
}
- (void)setAccessibilityRole:(NSString*)role {
  note(self, @"role", role);
}
- (NSString*)accessibilitySubrole {
  return [notesOn(self) objectForKey:@"subrole"];
}
- (void)setAccessibilitySubrole:(NSString*)subrole {
  note(self, @"subrole", subrole);
}
- (BOOL)isAccessibilityElement {
  return [static_cast<NSNumber*>([notesOn(self) objectForKey:@"element"]) boolValue];
}
- (void)setAccessibilityElement:(BOOL)isElement {
  note(self, @"element", [NSNumber numberWithBool:isElement]);
}
@end

@implementation NSCell (QMCompatViews)
- (void)setTruncatesLastVisibleLine:(BOOL)truncates {
  (void)truncates;
}
@end

// A label's text begins two points from its edges.
@implementation NSTextFieldCell (QMCompatViews)
- (NSRect)titleRectForBounds:(NSRect)bounds {
  return [self isBordered] || [self isBezeled] ? [self drawingRectForBounds:bounds]
                                               : NSInsetRect(bounds, 2, 0);
}
@end

@implementation NSTextField (QMCompatViews)
- (NSEdgeInsets)alignmentRectInsets {
  return NSEdgeInsetsMake(0, 2, 0, 2);
}
- (void)setLineBreakMode:(NSLineBreakMode)mode {
  [[self cell] setLineBreakMode:mode];
}
- (NSInteger)maximumNumberOfLines {
  return [static_cast<NSNumber*>([notesOn(self) objectForKey:@"lines"]) integerValue];
}
- (void)setMaximumNumberOfLines:(NSInteger)count {
  note(self, @"lines", [NSNumber numberWithInteger:count]);
}
@end

// A checkbox; other buttons here say themselves how large they are.
@implementation NSButton (QMCompatViews)
- (NSSize)intrinsicContentSize {
  constexpr CGFloat kBox = 14, kGap = 6;
  const NSSize title = [[self attributedTitle] size];
  if ([[self title] length] == 0) return NSMakeSize(kBox, kBox);
  return NSMakeSize(kBox + kGap + ceil(title.width - 0.001), MAX(kBox, title.height));
}
@end

// Of a Mac's segments, none may be selected.
@implementation NSSegmentedCell (QMCompatViews)
- (void)setSelectedSegment:(NSInteger)segment {
  const auto isThere = [self](NSInteger one) { return one >= 0 && one < [self segmentCount]; };
  if (isThere(_selected_segment)) [self setSelected:NO forSegment:_selected_segment];
  if (isThere(segment)) [self setSelected:YES forSegment:segment];
  _selected_segment = segment;
}
- (void)drawWithFrame:(NSRect)frame inView:(NSView*)view {
  (void)view;
  constexpr CGFloat kRadius = 6, kLetters = 12;
  const auto fill = [](NSColor* color, NSRect rect) {
    [color setFill];
    [[NSBezierPath bezierPathWithRoundedRect:rect xRadius:kRadius yRadius:kRadius] fill];
  };
  fill([NSColor separatorColor], frame);
  for (NSInteger i = 0; i < [self segmentCount]; ++i) {
    const CGFloat width = frame.size.width / static_cast<CGFloat>([self segmentCount]);
    const NSRect segment = NSMakeRect(NSMinX(frame) + width * static_cast<CGFloat>(i),
                                      NSMinY(frame), width, frame.size.height);
    // Where GNUstep looks for what was clicked: an item is no view, but has a frame like one.
    [static_cast<NSView*>([_items objectAtIndex:static_cast<NSUInteger>(i)]) setFrame:segment];
    if (i == _selected_segment) fill([NSColor systemBlueColor], NSInsetRect(segment, 1, 1));
    NSDictionary* const attributes = @{
      NSFontAttributeName : [NSFont systemFontOfSize:kLetters],
      NSForegroundColorAttributeName : i == _selected_segment ? [NSColor whiteColor]
                                                              : [NSColor labelColor],
    };
    const NSSize size = [[self labelForSegment:i] sizeWithAttributes:attributes];
    [[self labelForSegment:i] drawAtPoint:NSMakePoint(NSMidX(segment) - size.width / 2,
                                                      NSMidY(segment) - size.height / 2)
                           withAttributes:attributes];
  }
}
@end

@implementation NSSegmentedControl (QMCompatViews)
- (void)setTrackingMode:(NSSegmentSwitchTracking)mode {
  (void)mode;
}
- (void)setSegmentDistribution:(NSSegmentDistribution)distribution {
  (void)distribution;
}
- (NSSize)intrinsicContentSize {
  constexpr CGFloat kHeight = 24, kPadding = 10, kLetters = 12;
  CGFloat widest = 0;
  for (NSInteger i = 0; i < [self segmentCount]; ++i) {
    NSDictionary* const attributes = @{NSFontAttributeName : [NSFont systemFontOfSize:kLetters]};
    widest = MAX(widest, ceil([[self labelForSegment:i] sizeWithAttributes:attributes].width));
  }
  return NSMakeSize(static_cast<CGFloat>([self segmentCount]) * (widest + 2 * kPadding), kHeight);
}
- (void)qmShareWidth {
  for (NSInteger i = 0; i < [self segmentCount]; ++i) {
    [self setWidth:[self bounds].size.width / static_cast<CGFloat>([self segmentCount])
        forSegment:i];
  }
}
- (void)setFrame:(NSRect)frame {
  [super setFrame:frame];
  [self qmShareWidth];
}
@end

// Scrollers that take no room are not to be seen at rest.
@implementation NSScrollView (QMCompatViews)
- (void)setScrollerStyle:(NSScrollerStyle)style {
  if (style != NSScrollerStyleOverlay) return;
  [self setAutohidesScrollers:NO];
  [self setHasVerticalScroller:NO];
}
- (void)setHorizontalScrollElasticity:(NSScrollElasticity)elasticity {
  (void)elasticity;
}
@end

@implementation NSWorkspace (QMCompatViews)
- (BOOL)accessibilityDisplayShouldReduceMotion {
  return NO;
}
@end
