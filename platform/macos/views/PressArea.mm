#include "platform/macos/views/PressArea.h"

#include "platform/macos/Retained.h"

namespace {

constexpr double kFocusRadius = 6;

}  // namespace

@implementation QMPressArea

- (id)initWithFrame:(NSRect)frame {
  self = [super initWithFrame:frame];
  if (self == nil) return nil;
  [self setTitle:@""];
  [self setBordered:NO];
  [self setTarget:self];
  [self setAction:@selector(tellPress:)];
  return self;
}

- (BOOL)isFlipped {
  return YES;
}

- (BOOL)isOpaque {
  return NO;
}

- (NSEdgeInsets)alignmentRectInsets {
  return NSEdgeInsetsMake(0, 0, 0, 0);
}

- (BOOL)acceptsFirstMouse:(NSEvent*)event {
  return YES;
}

/// What is in it is its label.
- (NSView*)hitTest:(NSPoint)point {
  return [super hitTest:point] != nil ? self : nil;
}

- (void)drawRect:(NSRect)dirty {
}

- (void)viewDidChangeEffectiveAppearance {
  [super viewDidChangeEffectiveAppearance];
  [self setNeedsDisplay:YES];
}

- (BOOL)isPressing {
  return _isPressing;
}

- (void)setPressing:(BOOL)pressing {
  if (_isPressing == pressing) return;
  _isPressing = pressing;
  const auto told = onPressing;
  if (told) told();
}

- (BOOL)isUnder:(NSEvent*)event {
  return [self mouse:[self convertPoint:[event locationInWindow] fromView:nil]
              inRect:[self bounds]];
}

- (void)mouseDown:(NSEvent*)event {
  _isFollowing = [self isEnabled];
  [self setPressing:_isFollowing];
}

- (void)mouseDragged:(NSEvent*)event {
  if (_isFollowing) [self setPressing:[self isUnder:event]];
}

- (void)mouseUp:(NSEvent*)event {
  const auto alive = quillmont::share(self);
  const BOOL presses = _isFollowing && [self isUnder:event];
  [self letGo];
  if (!presses) return;
  [self setNextState];
  [self sendAction:[self action] to:[self target]];
}

- (void)keyDown:(NSEvent*)event {
  NSString* const keys = [event characters];
  if ([keys isEqualToString:@" "] || [keys isEqualToString:@"\r"]) {
    if (![event isARepeat]) [self performClick:nil];
  } else {
    [super keyDown:event];
  }
}

- (void)performClick:(id)sender {
  const auto alive = quillmont::share(self);
  [super performClick:sender];
}

- (BOOL)becomeFirstResponder {
  if (![super becomeFirstResponder]) return NO;
  [self scrollRectToVisible:[self bounds]];
  return YES;
}

- (void)tellPress:(id)sender {
  [[self retain] autorelease];
  const auto told = onPress;
  if (told) told();
}

- (void)letGo {
  _isFollowing = NO;
  [self setPressing:NO];
}

- (NSBezierPath*)focusOutline {
  return [NSBezierPath bezierPathWithRoundedRect:[self bounds]
                                         xRadius:kFocusRadius
                                         yRadius:kFocusRadius];
}

- (NSRect)focusRingMaskBounds {
  return [self bounds];
}

- (void)drawFocusRingMask {
  [[self focusOutline] fill];
}

@end
