// Windows, screens, view controllers, popovers and alerts.
#pragma once

#include <AppKit/views.h>

#pragma clang assume_nonnull begin

@class NSButton;
typedef NSInteger NSModalResponse;
typedef NSInteger NSWindowLevel;
enum : NSModalResponse {
  NSModalResponseStop = -1000,
  NSModalResponseAbort = -1001,
  NSModalResponseContinue = -1002
};
enum : NSModalResponse {
  NSAlertFirstButtonReturn = 1000,
  NSAlertSecondButtonReturn = 1001,
  NSAlertThirdButtonReturn = 1002
};
QM_ENUM(NSInteger, NSPopoverBehavior){NSPopoverBehaviorApplicationDefined = 0,
                                      NSPopoverBehaviorTransient = 1,
                                      NSPopoverBehaviorSemitransient = 2};
QM_ENUM(NSUInteger, NSAlertStyle){NSAlertStyleWarning = 0, NSAlertStyleInformational = 1,
                                  NSAlertStyleCritical = 2};
QM_FLAGS(NSUInteger, NSWindowStyleMask){NSWindowStyleMaskBorderless = 0,
                                        NSWindowStyleMaskTitled = 1 << 0};
QM_ENUM(NSUInteger, NSBackingStoreType){NSBackingStoreBuffered = 2};

extern "C" {
extern const NSNotificationName NSWindowDidBecomeKeyNotification;
extern const NSNotificationName NSWindowDidResignKeyNotification;
extern const NSNotificationName NSViewBoundsDidChangeNotification;
}

@interface NSScreen : NSObject
@property(class, nullable, readonly, strong) NSScreen* mainScreen;
@property(class, readonly, copy) NSArray<NSScreen*>* screens;
@property(readonly) CGFloat backingScaleFactor;
@property(readonly) NSRect frame;
@property(readonly) NSRect visibleFrame;
@end

@interface NSWindow : NSResponder
@property(nullable, strong) __kindof NSView* contentView;
@property(nullable, weak) NSView* initialFirstResponder;
@property(nullable, readonly, weak) NSResponder* firstResponder;
@property(readonly) NSRect frame;
@property(nullable, readonly, strong) NSScreen* screen;
@property(readonly) CGFloat backingScaleFactor;
@property(readonly, getter=isVisible) BOOL visible;
@property(readonly, getter=isKeyWindow) BOOL keyWindow;
@property(readonly) BOOL canBecomeKeyWindow;
@property(readonly) NSPoint mouseLocationOutsideOfEventStream;
@property(getter=isReleasedWhenClosed) BOOL releasedWhenClosed;
@property BOOL allowsToolTipsWhenApplicationIsInactive;
@property BOOL preventsApplicationTerminationWhenModal;
@property BOOL acceptsMouseMovedEvents;
@property BOOL autorecalculatesKeyViewLoop;
@property NSWindowLevel level;
@property(readonly) NSInteger windowNumber;
- (instancetype)initWithContentRect:(NSRect)rect
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backing
                              defer:(BOOL)defer;
- (BOOL)makeFirstResponder:(nullable NSResponder*)responder;
- (void)makeKeyWindow;
- (void)makeKeyAndOrderFront:(nullable id)sender;
- (void)orderFront:(nullable id)sender;
- (void)orderFrontRegardless;
- (void)orderOut:(nullable id)sender;
- (void)close;
- (void)setFrame:(NSRect)frame display:(BOOL)display;
- (void)sendEvent:(NSEvent*)event;
- (void)selectNextKeyView:(nullable id)sender;
- (void)selectPreviousKeyView:(nullable id)sender;
- (void)recalculateKeyViewLoop;
- (NSRect)convertRectToScreen:(NSRect)rect;
- (NSPoint)convertPointToScreen:(NSPoint)point;
- (NSPoint)convertPointFromScreen:(NSPoint)point;
@end

@interface NSViewController : NSResponder
@property(strong) NSView* view;
@property(nullable, copy) NSString* title;
@property NSSize preferredContentSize;
@property(readonly, getter=isViewLoaded) BOOL viewLoaded;
- (instancetype)initWithNibName:(nullable NSString*)name bundle:(nullable NSBundle*)bundle;
- (void)loadView;
- (void)viewWillAppear;
- (void)viewDidAppear;
- (void)viewWillDisappear;
- (void)viewDidDisappear;
@end

@class NSPopover;

@protocol NSPopoverDelegate <NSObject>
@optional
- (BOOL)popoverShouldClose:(NSPopover*)popover;
- (void)popoverWillShow:(NSNotification*)notification;
- (void)popoverDidShow:(NSNotification*)notification;
- (void)popoverWillClose:(NSNotification*)notification;
- (void)popoverDidClose:(NSNotification*)notification;
@end

@interface NSPopover : NSResponder
@property(nullable, weak) id<NSPopoverDelegate> delegate;
@property NSPopoverBehavior behavior;
@property BOOL animates;
@property(nullable, retain) NSViewController* contentViewController;
@property NSSize contentSize;
@property NSRect positioningRect;
@property(readonly, getter=isShown) BOOL shown;
@property(nullable, strong) NSAppearance* appearance;
- (void)showRelativeToRect:(NSRect)rect ofView:(NSView*)view preferredEdge:(NSRectEdge)edge;
- (void)performClose:(nullable id)sender;
- (void)close;
@end

@interface NSAlert : NSObject
@property(copy) NSString* messageText;
@property(copy) NSString* informativeText;
@property NSAlertStyle alertStyle;
@property(readonly, copy) NSArray<NSButton*>* buttons;
@property(readonly, strong) NSWindow* window;
- (NSButton*)addButtonWithTitle:(NSString*)title;
- (NSModalResponse)runModal;
@end

#pragma clang assume_nonnull end
