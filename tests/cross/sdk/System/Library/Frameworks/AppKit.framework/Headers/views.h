// Events, the responder chain, plain views and their accessibility.
#pragma once

#include <AppKit/drawing.h>

#pragma clang assume_nonnull begin

@class NSMenu, NSScreen, NSScrollView, NSTrackingArea, NSWindow;
typedef NSString* NSAccessibilityRole;
typedef NSString* NSAccessibilitySubrole;

QM_ENUM(NSUInteger, NSEventType){NSEventTypeLeftMouseDown = 1,
                                 NSEventTypeLeftMouseUp = 2,
                                 NSEventTypeRightMouseDown = 3,
                                 NSEventTypeRightMouseUp = 4,
                                 NSEventTypeMouseMoved = 5,
                                 NSEventTypeLeftMouseDragged = 6,
                                 NSEventTypeMouseEntered = 8,
                                 NSEventTypeMouseExited = 9,
                                 NSEventTypeKeyDown = 10,
                                 NSEventTypeKeyUp = 11,
                                 NSEventTypeApplicationDefined = 15,
                                 NSEventTypeScrollWheel = 22,
                                 NSEventTypeOtherMouseDown = 25};
QM_FLAGS(unsigned long long, NSEventMask){
    NSEventMaskLeftMouseDown = 1ULL << NSEventTypeLeftMouseDown,
    NSEventMaskLeftMouseUp = 1ULL << NSEventTypeLeftMouseUp,
    NSEventMaskRightMouseDown = 1ULL << NSEventTypeRightMouseDown,
    NSEventMaskLeftMouseDragged = 1ULL << NSEventTypeLeftMouseDragged,
    NSEventMaskOtherMouseDown = 1ULL << NSEventTypeOtherMouseDown,
    NSEventMaskAny = 0xFFFFFFFFFFFFFFFFULL};
QM_FLAGS(NSUInteger, NSEventModifierFlags){
    NSEventModifierFlagShift = 1 << 17, NSEventModifierFlagControl = 1 << 18,
    NSEventModifierFlagOption = 1 << 19, NSEventModifierFlagCommand = 1 << 20};
QM_FLAGS(NSUInteger, NSTrackingAreaOptions){
    NSTrackingMouseEnteredAndExited = 0x01, NSTrackingMouseMoved = 0x02,
    NSTrackingActiveAlways = 0x80,          NSTrackingAssumeInside = 0x100,
    NSTrackingInVisibleRect = 0x200,        NSTrackingEnabledDuringMouseDrag = 0x400};
QM_FLAGS(NSUInteger, NSAutoresizingMaskOptions){
    NSViewNotSizable = 0, NSViewMinXMargin = 1,     NSViewWidthSizable = 2, NSViewMaxXMargin = 4,
    NSViewMinYMargin = 8, NSViewHeightSizable = 16, NSViewMaxYMargin = 32};
QM_ENUM(NSInteger, NSWindowOrderingMode){NSWindowAbove = 1, NSWindowBelow = -1, NSWindowOut = 0};
QM_ENUM(NSUInteger, NSFocusRingType){NSFocusRingTypeDefault = 0, NSFocusRingTypeNone = 1,
                                     NSFocusRingTypeExterior = 2};

extern "C" {
extern const CGFloat NSViewNoIntrinsicMetric;
extern const NSAccessibilityRole NSAccessibilityButtonRole;
extern const NSAccessibilityRole NSAccessibilityCheckBoxRole;
extern const NSAccessibilityRole NSAccessibilityGroupRole;
extern const NSAccessibilityRole NSAccessibilityImageRole;
extern const NSAccessibilityRole NSAccessibilityStaticTextRole;
extern const NSAccessibilitySubrole NSAccessibilitySwitchSubrole;
extern const NSNotificationName NSAccessibilityValueChangedNotification;
void NSAccessibilityPostNotification(id element, NSNotificationName notification);
}

@interface NSEvent : NSObject <NSCopying>
@property(readonly) NSEventType type;
@property(nullable, readonly, weak) NSWindow* window;
@property(readonly) NSPoint locationInWindow;
@property(readonly) NSEventModifierFlags modifierFlags;
@property(readonly) unsigned short keyCode;
@property(nullable, readonly, copy) NSString* characters;
@property(nullable, readonly, copy) NSString* charactersIgnoringModifiers;
@property(readonly, getter=isARepeat) BOOL ARepeat;
@property(readonly) NSInteger clickCount;
@property(readonly) NSTimeInterval timestamp;
@property(class, readonly) NSPoint mouseLocation;
+ (nullable id)addGlobalMonitorForEventsMatchingMask:(NSEventMask)mask
                                             handler:(void (^)(NSEvent* event))handler;
+ (void)removeMonitor:(id)monitor;
+ (nullable NSEvent*)keyEventWithType:(NSEventType)type
                             location:(NSPoint)location
                        modifierFlags:(NSEventModifierFlags)flags
                            timestamp:(NSTimeInterval)time
                         windowNumber:(NSInteger)window
                              context:(nullable NSGraphicsContext*)context
                           characters:(NSString*)characters
          charactersIgnoringModifiers:(NSString*)unmodified
                            isARepeat:(BOOL)repeated
                              keyCode:(unsigned short)code;
@end

@interface NSResponder : NSObject
@property(nullable, assign) NSResponder* nextResponder;
@property(readonly) BOOL acceptsFirstResponder;
- (BOOL)becomeFirstResponder;
- (BOOL)resignFirstResponder;
- (BOOL)performKeyEquivalent:(NSEvent*)event;
- (void)mouseDown:(NSEvent*)event;
- (void)mouseUp:(NSEvent*)event;
- (void)mouseDragged:(NSEvent*)event;
- (void)mouseMoved:(NSEvent*)event;
- (void)mouseEntered:(NSEvent*)event;
- (void)mouseExited:(NSEvent*)event;
- (void)scrollWheel:(NSEvent*)event;
- (void)keyDown:(NSEvent*)event;
- (void)keyUp:(NSEvent*)event;
@end

@protocol NSStandardKeyBindingResponding <NSObject>
@optional
- (void)cancelOperation:(nullable id)sender;
@end

@interface NSResponder (NSStandardKeyBindingMethods) <NSStandardKeyBindingResponding>
@end

@protocol NSAccessibility <NSObject>
@property(getter=isAccessibilityElement) BOOL accessibilityElement;
@property(getter=isAccessibilityEnabled) BOOL accessibilityEnabled;
@property(getter=isAccessibilityHidden) BOOL accessibilityHidden;
@property(nullable, copy) NSString* accessibilityLabel;
@property(nullable, copy) NSString* accessibilityTitle;
@property(nullable, copy) NSString* accessibilityHelp;
@property(nullable, copy) NSString* accessibilityIdentifier;
@property(nullable, copy) NSAccessibilityRole accessibilityRole;
@property(nullable, copy) NSAccessibilitySubrole accessibilitySubrole;
@property(nullable, strong) id accessibilityValue;
@property(nullable, copy) NSArray* accessibilityChildren;
- (BOOL)accessibilityPerformPress;
@end

@interface NSView : NSResponder <NSAccessibility>
@property(nullable, readonly, assign) NSWindow* window;
@property(nullable, readonly, assign) NSView* superview;
@property(copy) NSArray<__kindof NSView*>* subviews;
@property NSRect frame;
@property NSRect bounds;
@property(getter=isHidden) BOOL hidden;
@property(readonly, getter=isHiddenOrHasHiddenAncestor) BOOL hiddenOrHasHiddenAncestor;
@property(readonly, getter=isFlipped) BOOL flipped;
@property(readonly, getter=isOpaque) BOOL opaque;
@property CGFloat alphaValue;
@property BOOL needsDisplay;
@property BOOL needsLayout;
@property BOOL wantsLayer;
@property BOOL clipsToBounds;
@property(nullable, copy) NSString* toolTip;
@property(nullable, strong) NSAppearance* appearance;
@property(readonly, strong) NSAppearance* effectiveAppearance;
@property(readonly) NSRect visibleRect;
@property(nullable, readonly, assign) NSScrollView* enclosingScrollView;
@property NSAutoresizingMaskOptions autoresizingMask;
@property BOOL autoresizesSubviews;
@property(readonly) NSSize intrinsicContentSize;
@property(readonly) NSSize fittingSize;
@property(readonly) NSEdgeInsets alignmentRectInsets;
@property NSFocusRingType focusRingType;
@property(readonly) NSRect focusRingMaskBounds;
@property(nullable, assign) NSView* nextKeyView;
@property(nullable, readonly, assign) NSView* nextValidKeyView;
@property(nullable, readonly, assign) NSView* previousValidKeyView;
@property(readonly) BOOL canBecomeKeyView;
@property(readonly) BOOL mouseDownCanMoveWindow;
@property(readonly, copy) NSArray<NSTrackingArea*>* trackingAreas;
- (instancetype)initWithFrame:(NSRect)frame;
- (void)addSubview:(NSView*)view;
- (void)addSubview:(NSView*)view
        positioned:(NSWindowOrderingMode)place
        relativeTo:(nullable NSView*)other;
- (void)removeFromSuperview;
- (void)sortSubviewsUsingFunction:(NSComparisonResult (*)(__kindof NSView* a, __kindof NSView* b,
                                                          void* _Nullable context))compare
                          context:(nullable void*)context;
- (BOOL)isDescendantOf:(NSView*)view;
- (void)setFrameOrigin:(NSPoint)origin;
- (void)setFrameSize:(NSSize)size;
- (void)drawRect:(NSRect)dirtyRect;
- (void)drawFocusRingMask;
- (void)noteFocusRingMaskChanged;
- (void)setNeedsDisplayInRect:(NSRect)rect;
- (void)displayIfNeeded;
- (void)layout;
- (void)layoutSubtreeIfNeeded;
- (nullable NSView*)hitTest:(NSPoint)point;
- (BOOL)acceptsFirstMouse:(nullable NSEvent*)event;
- (NSPoint)convertPoint:(NSPoint)point fromView:(nullable NSView*)view;
- (NSPoint)convertPoint:(NSPoint)point toView:(nullable NSView*)view;
- (NSRect)convertRect:(NSRect)rect fromView:(nullable NSView*)view;
- (NSRect)convertRect:(NSRect)rect toView:(nullable NSView*)view;
- (BOOL)mouse:(NSPoint)point inRect:(NSRect)rect;
- (void)addTrackingArea:(NSTrackingArea*)area;
- (void)removeTrackingArea:(NSTrackingArea*)area;
- (void)updateTrackingAreas;
- (void)viewDidMoveToWindow;
- (void)viewWillMoveToWindow:(nullable NSWindow*)window;
- (void)viewDidChangeEffectiveAppearance;
- (void)viewDidChangeBackingProperties;
- (void)scrollPoint:(NSPoint)point;
- (BOOL)scrollRectToVisible:(NSRect)rect;
- (NSRect)alignmentRectForFrame:(NSRect)frame;
- (NSRect)frameForAlignmentRect:(NSRect)rect;
- (void)invalidateIntrinsicContentSize;
@end

@interface NSTrackingArea : NSObject <NSCopying>
- (instancetype)initWithRect:(NSRect)rect
                     options:(NSTrackingAreaOptions)options
                       owner:(nullable id)owner
                    userInfo:(nullable NSDictionary*)userInfo;
@end

#pragma clang assume_nonnull end
