// The application itself, the menu bar, and what else runs on the Mac.
#pragma once

#include <AppKit/controls.h>
#include <AppKit/windows.h>
#include <sys/types.h>

#pragma clang assume_nonnull begin

@class NSApplication;

QM_ENUM(NSInteger, NSApplicationActivationPolicy){NSApplicationActivationPolicyRegular = 0,
                                                  NSApplicationActivationPolicyAccessory = 1,
                                                  NSApplicationActivationPolicyProhibited = 2};
QM_ENUM(NSUInteger, NSApplicationTerminateReply){NSTerminateCancel = 0, NSTerminateNow = 1,
                                                 NSTerminateLater = 2};

extern "C" {
extern __kindof NSApplication* _Null_unspecified NSApp;
extern const NSRunLoopMode NSEventTrackingRunLoopMode;
extern const NSRunLoopMode NSModalPanelRunLoopMode;
extern const NSNotificationName NSWorkspaceDidMountNotification;
extern const NSNotificationName NSWorkspaceDidUnmountNotification;
extern const NSNotificationName NSWorkspaceWillUnmountNotification;
extern NSString* const NSWorkspaceVolumeURLKey;
}

static const CGFloat NSVariableStatusItemLength = -1.0;
static const CGFloat NSSquareStatusItemLength = -2.0;

@protocol NSApplicationDelegate <NSObject>
@optional
- (NSApplicationTerminateReply)applicationShouldTerminate:(NSApplication*)sender;
- (BOOL)applicationShouldTerminateAfterLastWindowClosed:(NSApplication*)sender;
- (BOOL)applicationSupportsSecureRestorableState:(NSApplication*)application;
- (void)applicationDidFinishLaunching:(NSNotification*)notification;
- (void)applicationWillTerminate:(NSNotification*)notification;
@end

@interface NSApplication : NSResponder
@property(class, readonly, strong) __kindof NSApplication* sharedApplication;
@property(nullable, weak) id<NSApplicationDelegate> delegate;
@property(nullable, readonly, weak) NSWindow* keyWindow;
@property(nullable, readonly, weak) NSWindow* modalWindow;
@property(nullable, readonly, strong) NSEvent* currentEvent;
@property(readonly, getter=isActive) BOOL active;
@property(readonly, getter=isRunning) BOOL running;
@property(readonly, copy) NSArray<NSWindow*>* windows;
@property(nullable, strong) NSMenu* mainMenu;
- (NSApplicationActivationPolicy)activationPolicy;
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy;
- (void)activateIgnoringOtherApps:(BOOL)ignoreOthers;
- (void)hide:(nullable id)sender;
- (void)unhideWithoutActivation;
- (void)disableRelaunchOnLogin;
- (void)finishLaunching;
- (void)run;
- (void)stop:(nullable id)sender;
- (void)terminate:(nullable id)sender;
- (void)abortModal;
- (void)stopModal;
- (void)stopModalWithCode:(NSModalResponse)code;
@end

@interface NSMenuItem : NSObject <NSCopying>
@property(nullable, strong) NSMenu* submenu;
- (instancetype)initWithTitle:(NSString*)title
                       action:(nullable SEL)action
                keyEquivalent:(NSString*)key;
@end

@interface NSMenu : NSObject <NSCopying>
- (instancetype)initWithTitle:(NSString*)title;
- (void)addItem:(NSMenuItem*)item;
- (NSMenuItem*)addItemWithTitle:(NSString*)title
                         action:(nullable SEL)action
                  keyEquivalent:(NSString*)key;
@end

@interface NSStatusBarButton : NSButton
@property BOOL appearsDisabled;
@end

@class NSStatusItem;

@interface NSStatusBar : NSObject
@property(class, readonly, strong) NSStatusBar* systemStatusBar;
- (NSStatusItem*)statusItemWithLength:(CGFloat)length;
- (void)removeStatusItem:(NSStatusItem*)item;
@end

@interface NSStatusItem : NSObject
@property CGFloat length;
@property(nullable, readonly, strong) NSStatusBarButton* button;
@end

@interface NSRunningApplication : NSObject
@property(class, readonly, strong) NSRunningApplication* currentApplication;
@property(readonly) pid_t processIdentifier;
@property(nullable, readonly, copy) NSString* bundleIdentifier;
@property(nullable, readonly, copy) NSDate* launchDate;
@property(readonly, getter=isTerminated) BOOL terminated;
+ (NSArray<NSRunningApplication*>*)runningApplicationsWithBundleIdentifier:(NSString*)identifier;
@end

@interface NSWorkspace : NSObject
@property(class, readonly, strong) NSWorkspace* sharedWorkspace;
@property(readonly, strong) NSNotificationCenter* notificationCenter;
@property(readonly) BOOL accessibilityDisplayShouldIncreaseContrast;
@property(readonly) BOOL accessibilityDisplayShouldReduceMotion;
@end

#pragma clang assume_nonnull end
