// Tracking areas, which GNUstep has only by name.
#include "tests/gnustep/compat_views.h"

// A view's tracking area, and whether the pointer was in it when it was looked for last. The view
// is not kept: its areas go before it does.
@interface GSTestTracked : NSObject {
 @public
  NSView* view;
  NSTrackingArea* area;
  BOOL isInside;
}
@end

@implementation GSTestTracked
- (void)dealloc {
  [area release];
  [super dealloc];
}
- (void)tell:(BOOL)inside {
  if (isInside == inside) return;
  isInside = inside;
  NSEvent* const event =
      [NSEvent enterExitEventWithType:inside ? NSMouseEntered : NSMouseExited
                             location:[[view window] mouseLocationOutsideOfEventStream]
                        modifierFlags:0
                            timestamp:0
                         windowNumber:[[view window] windowNumber]
                              context:nil
                          eventNumber:0
                       trackingNumber:0
                             userData:nullptr];
  id const owner = [[[area owner] retain] autorelease];
  [owner performSelector:inside ? @selector(mouseEntered:) : @selector(mouseExited:)
              withObject:event];
}
@end

// Looks for the pointer from time to time, as GNUstep's own areas do not follow their views.
@interface GSTestPointer : NSObject {
 @public
  NSMutableArray* tracked;
}
+ (GSTestPointer*)shared;
@end

@implementation GSTestPointer
+ (GSTestPointer*)shared {
  static GSTestPointer* const result = [[GSTestPointer alloc] init];
  return result;
}
- (id)init {
  self = [super init];
  if (self == nil) return nil;
  tracked = [[NSMutableArray alloc] init];
  NSTimer* const timer = [NSTimer timerWithTimeInterval:0.02
                                                 target:self
                                               selector:@selector(look:)
                                               userInfo:nil
                                                repeats:YES];
  for (NSString* mode in @[ NSDefaultRunLoopMode, NSEventTrackingRunLoopMode ]) {
    [[NSRunLoop currentRunLoop] addTimer:timer forMode:mode];
  }
  return self;
}
// Of windows that lie on each other, the one that was ordered to the front last has the pointer.
static NSWindow* windowUnderPointer() {
  NSWindow* result = nil;
  for (NSWindow* window in [NSApp windows]) {
    if (![window isVisible] || !NSPointInRect([NSEvent mouseLocation], [window frame])) continue;
    if (result == nil || [window level] >= [result level]) result = window;
  }
  return result;
}
- (void)look:(NSTimer*)timer {
  (void)timer;
  if ([tracked count] == 0) return;
  NSWindow* const window = windowUnderPointer();
  const auto isUnder = [window](NSView* view) {
    if ([view window] != window || window == nil || [view isHiddenOrHasHiddenAncestor]) return NO;
    const NSPoint inWindow = [window mouseLocationOutsideOfEventStream];
    return [view mouse:[view convertPoint:inWindow fromView:nil] inRect:[view visibleRect]];
  };
  for (GSTestTracked* one in [[tracked copy] autorelease]) {
    if ([tracked containsObject:one] && one->isInside) [one tell:isUnder(one->view)];
  }
  for (GSTestTracked* one in [[tracked copy] autorelease]) {
    if ([tracked containsObject:one] && !one->isInside) [one tell:isUnder(one->view)];
  }
}
@end

@implementation NSView (QMCompatPointer)
- (void)addTrackingArea:(NSTrackingArea*)area {
  GSTestTracked* const one = [[[GSTestTracked alloc] init] autorelease];
  one->view = self;
  one->area = [area retain];
  [[GSTestPointer shared]->tracked addObject:one];
}
- (void)removeTrackingArea:(NSTrackingArea*)area {
  for (GSTestTracked* one in [[[GSTestPointer shared]->tracked copy] autorelease]) {
    if (one->area == area) [[GSTestPointer shared]->tracked removeObject:one];
  }
}
- (NSArray*)trackingAreas {
  NSMutableArray* const result = [NSMutableArray array];
  for (GSTestTracked* one in [GSTestPointer shared]->tracked) {
    if (one->view == self) [result addObject:one->area];
  }
  return result;
}
@end
