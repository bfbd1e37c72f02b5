// The missing parts of AppKit's shell: status bar, popover, events, workspace.
#pragma once

#import <AppKit/AppKit.h>

typedef unsigned long long NSEventMask;

#define NSEventTypeLeftMouseDown NSLeftMouseDown
#define NSEventTypeLeftMouseUp NSLeftMouseUp
#define NSEventTypeLeftMouseDragged NSLeftMouseDragged
#define NSEventTypeRightMouseDown NSRightMouseDown
#define NSEventTypeOtherMouseDown NSOtherMouseDown
#define NSEventTypeMouseMoved NSMouseMoved
#define NSEventTypeMouseEntered NSMouseEntered
#define NSEventTypeMouseExited NSMouseExited
#define NSEventTypeApplicationDefined NSApplicationDefined
#define NSEventTypeKeyDown NSKeyDown
#define NSEventTypeKeyUp NSKeyUp
#define NSEventTypeScrollWheel NSScrollWheel
#define NSEventMaskLeftMouseDown NSLeftMouseDownMask
#define NSEventMaskLeftMouseUp NSLeftMouseUpMask
#define NSEventMaskLeftMouseDragged NSLeftMouseDraggedMask
#define NSEventMaskRightMouseDown NSRightMouseDownMask
#define NSEventMaskOtherMouseDown NSOtherMouseDownMask
#define NSEventMaskAny NSAnyEventMask

#define NSAlertStyleWarning NSWarningAlertStyle
#define NSAlertStyleInformational NSInformationalAlertStyle
#define NSAlertStyleCritical NSCriticalAlertStyle

/// A new process is one without a bundle: no program of the dock, nor of the menu bar.
@interface NSApplication (QMCompat)
- (NSApplicationActivationPolicy)activationPolicy;
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy;
- (void)disableRelaunchOnLogin;
- (BOOL)isFullKeyboardAccessEnabled;
@end

@interface NSWindow (QMCompat)
- (void)setAllowsToolTipsWhenApplicationIsInactive:(BOOL)allows;
- (void)setPreventsApplicationTerminationWhenModal:(BOOL)prevents;
@end

@interface NSView (QMCompatDesktop)
- (void)viewDidChangeBackingProperties;
@end

@interface NSImage (QMCompatDesktop)
- (void)setTemplate:(BOOL)isTemplate;
- (NSString*)accessibilityDescription;
- (void)setAccessibilityDescription:(NSString*)description;
@end

@interface NSStatusItem (QMCompat)
- (NSStatusBarButton*)button;
@end

@interface NSViewController (QMCompat)
- (NSSize)preferredContentSize;
- (void)setPreferredContentSize:(NSSize)size;
@end

@interface NSEvent (QMCompat)
+ (id)addGlobalMonitorForEventsMatchingMask:(NSEventMask)mask handler:(void (^)(NSEvent*))handler;
+ (void)removeMonitor:(id)monitor;
@end

namespace quillmont::testing {

/// Tells the global monitors of a press in another program.
void pressElsewhere(NSEventType type);

/// How many global monitors there are.
NSUInteger globalMonitors();

/// The window of a popover that is shown, else nil.
NSWindow* windowOf(NSPopover* popover);

/// Where a view is on the screen, in the coordinates of X11.
NSRect frameOnScreen(NSView* view);

}  // namespace quillmont::testing
