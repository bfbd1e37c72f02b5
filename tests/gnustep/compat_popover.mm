// Popovers with a Mac's manners.
#include <objc/runtime.h>

#include "tests/gnustep/compat_desktop.h"

static NSMapTable* preferredSizes() {
  static NSMapTable* const result = [[NSMapTable alloc]
      initWithKeyOptions:NSPointerFunctionsOpaqueMemory | NSPointerFunctionsOpaquePersonality
            valueOptions:NSPointerFunctionsStrongMemory
                capacity:8];
  return result;
}

static NSMutableArray* shownPopovers() {
  static NSMutableArray* const result = [[NSMutableArray alloc] init];
  return result;
}

@interface GSTestPopoverWindow : NSPanel
@end

@implementation GSTestPopoverWindow
- (BOOL)canBecomeKeyWindow {
  return YES;
}
@end

@interface NSPopover (QMCompatPrivate)
- (void)qmPlace;
- (NSView*)qmAnchor;
@end

// What a popover hangs from, for as long as it is shown.
static NSMapTable* anchors() {
  static NSMapTable* const result = [[NSMapTable alloc]
      initWithKeyOptions:NSPointerFunctionsOpaqueMemory | NSPointerFunctionsOpaquePersonality
            valueOptions:NSPointerFunctionsStrongMemory
                capacity:8];
  return result;
}

@implementation NSViewController (QMCompat)
- (NSSize)preferredContentSize {
  return [static_cast<NSValue*>([preferredSizes() objectForKey:self]) sizeValue];
}
- (void)setPreferredContentSize:(NSSize)size {
  [preferredSizes() setObject:[NSValue valueWithSize:size] forKey:self];
  for (NSPopover* popover in shownPopovers()) {
    if ([popover contentViewController] == self) [popover qmPlace];
  }
}
@end

static void tellDelegate(NSPopover* popover, SEL selector, NSString* name) {
  NSNotification* const notification = [NSNotification notificationWithName:name object:popover];
  if ([[popover delegate] respondsToSelector:selector]) {
    [[popover delegate] performSelector:selector withObject:notification];
  }
  [[NSNotificationCenter defaultCenter] postNotification:notification];
}

// A Mac's manners: a borderless window beside the anchor, on the screen, that closes when it is
// told to; a transient one also at a press elsewhere in the program.
@implementation NSPopover (QMCompat)
- (void)setDelegate:(id)delegate {
  _delegate = delegate;
}
- (BOOL)isShown {
  return [shownPopovers() indexOfObjectIdenticalTo:self] != NSNotFound;
}
- (NSView*)qmAnchor {
  return [anchors() objectForKey:self];
}
- (void)showRelativeToRect:(NSRect)rect ofView:(NSView*)view preferredEdge:(NSRectEdge)edge {
  if (_contentViewController == nil || [_contentViewController view] == nil) {
    [NSException raise:NSInternalInconsistencyException format:@"a popover without content"];
  }
  if ([view window] == nil) {
    [NSException raise:NSInvalidArgumentException format:@"a popover on a view of no window"];
  }
  if (![[view window] isVisible]) return;
  const BOOL wasShown = [self isShown];
  if (!wasShown) {
    tellDelegate(self, @selector(popoverWillShow:), NSPopoverWillShowNotification);
    _realWindow = [[GSTestPopoverWindow alloc] initWithContentRect:NSMakeRect(0, 0, 10, 10)
                                                         styleMask:NSBorderlessWindowMask
                                                           backing:NSBackingStoreBuffered
                                                             defer:NO];
    [_realWindow setReleasedWhenClosed:NO];
    [_realWindow setHidesOnDeactivate:NO];
    [_realWindow setLevel:NSPopUpMenuWindowLevel];
    [_realWindow setBackgroundColor:[NSColor windowBackgroundColor]];
    [_realWindow setContentView:[_contentViewController view]];
    [shownPopovers() addObject:self];
  }
  _positioningRect = NSIsEmptyRect(rect) ? [view bounds] : rect;
  _appearance = static_cast<NSPopoverAppearance>(edge);
  [anchors() setObject:view forKey:self];
  [self qmPlace];
  [_realWindow orderFrontRegardless];
  if (!wasShown) tellDelegate(self, @selector(popoverDidShow:), NSPopoverDidShowNotification);
}
- (void)setPositioningRect:(NSRect)rect {
  _positioningRect = rect;
  if ([self isShown]) [self qmPlace];
}
- (void)qmPlace {
  NSView* const view = [self qmAnchor];
  NSSize size = [_contentViewController preferredContentSize];
  if (NSEqualSizes(size, NSZeroSize)) size = _contentSize;
  if (NSEqualSizes(size, NSZeroSize)) size = [[_contentViewController view] frame].size;
  const NSRect inWindow = [view convertRect:_positioningRect toView:nil];
  const NSPoint origin = [[view window] convertBaseToScreen:inWindow.origin];
  const NSRect anchor = {origin, inWindow.size};
  const NSRect screen = [[NSScreen mainScreen] frame];
  constexpr CGFloat kArrow = 10;
  const BOOL above = NSMaxY(anchor) + kArrow + size.height <= NSMaxY(screen);
  const BOOL below = NSMinY(anchor) - kArrow - size.height >= NSMinY(screen);
  const BOOL wantsTop = (static_cast<NSRectEdge>(_appearance) == NSMaxYEdge) != [view isFlipped];
  const BOOL onTop = (wantsTop && above) || !below;
  NSRect frame = {{NSMidX(anchor) - size.width / 2,
                   onTop ? NSMaxY(anchor) + kArrow : NSMinY(anchor) - kArrow - size.height},
                  size};
  frame.origin.x = MAX(NSMinX(screen), MIN(frame.origin.x, NSMaxX(screen) - size.width));
  [_realWindow setFrame:frame display:YES];
}
- (void)close {
  if (![self isShown]) return;
  [[self retain] autorelease];
  tellDelegate(self, @selector(popoverWillClose:), NSPopoverWillCloseNotification);
  if (![self isShown]) return;
  NSWindow* const parent = [[self qmAnchor] window];
  const BOOL wasKey = [_realWindow isKeyWindow];
  [shownPopovers() removeObjectIdenticalTo:self];
  [anchors() removeObjectForKey:self];
  [[_contentViewController view] removeFromSuperview];
  [_realWindow orderOut:nil];
  [_realWindow autorelease];
  _realWindow = nil;
  if (wasKey && [parent isKindOfClass:[GSTestPopoverWindow class]]) [parent makeKeyWindow];
  tellDelegate(self, @selector(popoverDidClose:), NSPopoverDidCloseNotification);
}
- (void)performClose:(id)sender {
  (void)sender;
  if (![self isShown]) return;
  for (NSPopover* other in shownPopovers()) {
    if ([[other qmAnchor] window] == _realWindow) return;  // as a Mac refuses
  }
  if ([_delegate respondsToSelector:@selector(popoverShouldClose:)] &&
      ![_delegate popoverShouldClose:self]) {
    return;
  }
  [self close];
}
@end

namespace quillmont::testing {

NSWindow* windowOf(NSPopover* popover) {
  return [popover isShown] ? [[[popover contentViewController] view] window] : nil;
}

}  // namespace quillmont::testing

static BOOL isWithin(NSWindow* window, NSPopover* popover) {
  if (window == quillmont::testing::windowOf(popover)) return YES;
  for (NSPopover* other in shownPopovers()) {
    if (other != popover && window == quillmont::testing::windowOf(other)) {
      return isWithin([[other qmAnchor] window], popover);
    }
  }
  return NO;
}

static void exchange(Class changed, SEL first, SEL second) {
  method_exchangeImplementations(class_getInstanceMethod(changed, first),
                                 class_getInstanceMethod(changed, second));
}

@implementation NSApplication (QMCompatPopovers)
+ (void)load {
  exchange(self, @selector(sendEvent:), @selector(qmSendEvent:));
  exchange(self, @selector(hide:), @selector(qmHide:));
}
/// GNUstep hides windows alone: the program stays the active one.
- (void)qmHide:(id)sender {
  [self qmHide:sender];
  [self deactivate];
}
- (void)qmSendEvent:(NSEvent*)event {
  if ([event type] == NSLeftMouseDown || [event type] == NSRightMouseDown) {
    NSArray* const popovers = [NSArray arrayWithArray:shownPopovers()];
    for (NSPopover* popover in [popovers reverseObjectEnumerator]) {
      if ([popover behavior] == NSPopoverBehaviorTransient && !isWithin([event window], popover)) {
        [popover performClose:nil];
      }
    }
  }
  [self qmSendEvent:event];
}
@end
