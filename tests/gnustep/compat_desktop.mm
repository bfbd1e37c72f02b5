#include "tests/gnustep/compat_desktop.h"

#include <Block.h>

// What the linker puts in the place of the classes of blocks: blocks become objects that can be
// kept in collections and sent the messages of memory management.
@interface GSTestBlock : NSObject
@end

@implementation GSTestBlock
- (id)copy {
  return static_cast<id>(_Block_copy(self));
}
- (id)copyWithZone:(NSZone*)zone {
  (void)zone;
  return static_cast<id>(_Block_copy(self));
}
- (id)retain {
  return static_cast<id>(_Block_copy(self));
}
- (oneway void)release {
  _Block_release(self);
}
- (NSUInteger)retainCount {
  return 1;
}
@end

// --- Application and windows

static NSApplicationActivationPolicy activationPolicy = NSApplicationActivationPolicyProhibited;

@implementation NSApplication (QMCompat)
- (NSApplicationActivationPolicy)activationPolicy {
  return activationPolicy;
}
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy {
  activationPolicy = policy;
  return YES;
}
- (void)disableRelaunchOnLogin {
}
/// GNUstep's own way with the keyboard.
- (BOOL)isFullKeyboardAccessEnabled {
  return YES;
}

@end

@implementation NSWindow (QMCompat)
- (void)setAllowsToolTipsWhenApplicationIsInactive:(BOOL)allows {
  (void)allows;
}
- (void)setPreventsApplicationTerminationWhenModal:(BOOL)prevents {
  (void)prevents;
}
@end

// --- Status bar

static NSMapTable* descriptions() {
  static NSMapTable* const result = [[NSMapTable alloc]
      initWithKeyOptions:NSPointerFunctionsOpaqueMemory | NSPointerFunctionsOpaquePersonality
            valueOptions:NSPointerFunctionsStrongMemory
                capacity:8];
  return result;
}

@implementation NSView (QMCompatDesktop)
- (void)viewDidChangeBackingProperties {
}
@end

@implementation NSImage (QMCompatDesktop)
- (void)setTemplate:(BOOL)isTemplate {
  (void)isTemplate;
}
- (NSString*)accessibilityDescription {
  return [descriptions() objectForKey:self];
}
- (void)setAccessibilityDescription:(NSString*)description {
  [descriptions() removeObjectForKey:self];
  if (description != nil) [descriptions() setObject:description forKey:self];
}
@end

namespace {

constexpr CGFloat kBarHeight = 24;
constexpr CGFloat kItemWidth = 30;
constexpr CGFloat kFirstItem = 60;  // from the right

}  // namespace

// Without a loop of its own for the pointer: the first press makes the program the active one, and
// GNUstep then tells of the release before the press.
@implementation NSStatusBarButton (QMCompat)
- (BOOL)acceptsFirstMouse:(NSEvent*)event {
  (void)event;
  return YES;
}
- (void)qmActOn:(NSUInteger)mask {
  const NSInteger wanted = [self sendActionOn:0];
  [self sendActionOn:wanted];
  if (static_cast<NSUInteger>(wanted) & mask) [self sendAction:[self action] to:[self target]];
}
- (void)mouseDown:(NSEvent*)event {
  (void)event;
  [self qmActOn:NSLeftMouseDownMask];
}
- (void)mouseUp:(NSEvent*)event {
  (void)event;
  [self qmActOn:NSLeftMouseUpMask];
}
@end

// Each item is a small window at the top of the screen, from the right to the left.
@implementation NSStatusBar (QMCompat)
+ (NSStatusBar*)systemStatusBar {
  static NSStatusBar* const bar = [[NSStatusBar alloc] init];
  return bar;
}
- (NSStatusItem*)statusItemWithLength:(CGFloat)length {
  NSStatusItem* const item = [[[NSStatusItem alloc] init] autorelease];
  if (_items == nil) _items = [[NSMutableArray alloc] init];
  const NSRect screen = [[NSScreen mainScreen] frame];
  const CGFloat width = length > 0 ? length : kItemWidth;
  const NSRect frame =
      NSMakeRect(NSMaxX(screen) - kFirstItem - static_cast<CGFloat>([_items count]) * kItemWidth,
                 NSMaxY(screen) - kBarHeight, width, kBarHeight);
  NSWindow* const window = [[[NSWindow alloc] initWithContentRect:frame
                                                        styleMask:NSBorderlessWindowMask
                                                          backing:NSBackingStoreBuffered
                                                            defer:NO] autorelease];
  [window setReleasedWhenClosed:NO];
  [window setLevel:NSStatusWindowLevel];
  NSStatusBarButton* const button =
      [[[NSStatusBarButton alloc] initWithFrame:NSMakeRect(0, 0, width, kBarHeight)] autorelease];
  [button setBordered:NO];
  [window setContentView:button];
  [item setView:button];
  [_items addObject:window];  // the bar keeps windows, not items
  [window orderFrontRegardless];
  return item;
}
- (void)removeStatusItem:(NSStatusItem*)item {
  NSWindow* const window = [[[[item view] window] retain] autorelease];
  [item setView:nil];
  [window orderOut:nil];
  if (window != nil) [_items removeObjectIdenticalTo:window];
}
- (CGFloat)thickness {
  return kBarHeight;
}
@end

@implementation NSStatusItem (QMCompat)
- (NSStatusBarButton*)button {
  return static_cast<NSStatusBarButton*>([self view]);
}
- (NSView*)view {
  return _view;
}
- (void)setView:(NSView*)view {
  [view retain];
  [_view release];
  _view = view;
}
@end

// --- Events in other programs

@interface GSTestMonitor : NSObject {
 @public
  NSEventMask mask_;
  void (^handler_)(NSEvent*);
}
@end

@implementation GSTestMonitor
- (void)dealloc {
  Block_release(handler_);
  [super dealloc];
}
@end

static NSMutableArray* monitors() {
  static NSMutableArray* const result = [[NSMutableArray alloc] init];
  return result;
}

@implementation NSEvent (QMCompat)
+ (id)addGlobalMonitorForEventsMatchingMask:(NSEventMask)mask handler:(void (^)(NSEvent*))handler {
  GSTestMonitor* const monitor = [[[GSTestMonitor alloc] init] autorelease];
  monitor->mask_ = mask;
  monitor->handler_ = Block_copy(handler);
  [monitors() addObject:monitor];
  return monitor;
}
+ (void)removeMonitor:(id)monitor {
  [monitors() removeObjectIdenticalTo:monitor];
}
@end

namespace quillmont::testing {

void pressElsewhere(NSEventType type) {
  NSEvent* const event = [NSEvent mouseEventWithType:type
                                            location:NSZeroPoint
                                       modifierFlags:0
                                           timestamp:0
                                        windowNumber:0
                                             context:nil
                                         eventNumber:0
                                          clickCount:1
                                            pressure:1];
  for (GSTestMonitor* monitor in [NSArray arrayWithArray:monitors()]) {
    if (monitor->mask_ & (1ULL << type)) monitor->handler_(event);
  }
}

NSUInteger globalMonitors() {
  return [monitors() count];
}

NSRect frameOnScreen(NSView* view) {
  const NSRect inWindow = [view convertRect:[view bounds] toView:nil];
  const NSPoint origin = [[view window] convertBaseToScreen:inWindow.origin];
  const CGFloat top = NSMaxY([[NSScreen mainScreen] frame]);
  return NSMakeRect(origin.x, top - origin.y - NSHeight(inWindow), NSWidth(inWindow),
                    NSHeight(inWindow));
}

}  // namespace quillmont::testing
