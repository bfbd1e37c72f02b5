// What the tests alone ask of AppKit: events made by hand, and what a view has drawn.
#pragma once

#include <AppKit/controls.h>
#include <AppKit/windows.h>

#pragma clang assume_nonnull begin

QM_ENUM(NSUInteger, NSBitmapImageFileType){NSBitmapImageFileTypePNG = 4};
typedef NSString* NSBitmapImageRepPropertyKey;

@class NSBitmapImageRep;

@interface NSEvent (Testing)
+ (nullable NSEvent*)mouseEventWithType:(NSEventType)type
                               location:(NSPoint)location
                          modifierFlags:(NSEventModifierFlags)flags
                              timestamp:(NSTimeInterval)time
                           windowNumber:(NSInteger)window
                                context:(nullable NSGraphicsContext*)context
                            eventNumber:(NSInteger)number
                             clickCount:(NSInteger)clicks
                               pressure:(float)pressure;
+ (nullable NSEvent*)enterExitEventWithType:(NSEventType)type
                                   location:(NSPoint)location
                              modifierFlags:(NSEventModifierFlags)flags
                                  timestamp:(NSTimeInterval)time
                               windowNumber:(NSInteger)window
                                    context:(nullable NSGraphicsContext*)context
                                eventNumber:(NSInteger)number
                             trackingNumber:(NSInteger)tracking
                                   userData:(nullable void*)data;
+ (nullable NSEvent*)otherEventWithType:(NSEventType)type
                               location:(NSPoint)location
                          modifierFlags:(NSEventModifierFlags)flags
                              timestamp:(NSTimeInterval)time
                           windowNumber:(NSInteger)window
                                context:(nullable NSGraphicsContext*)context
                                subtype:(short)subtype
                                  data1:(NSInteger)data1
                                  data2:(NSInteger)data2;
@end

@interface NSApplication (Testing)
- (nullable NSEvent*)nextEventMatchingMask:(NSEventMask)mask
                                 untilDate:(nullable NSDate*)date
                                    inMode:(NSRunLoopMode)mode
                                   dequeue:(BOOL)dequeue;
- (void)postEvent:(NSEvent*)event atStart:(BOOL)first;
- (void)sendEvent:(NSEvent*)event;
@property(readonly, getter=isFullKeyboardAccessEnabled) BOOL fullKeyboardAccessEnabled;
@end

@interface NSWindow (Testing)
@property(nullable, strong) NSAppearance* appearance;
@property(null_resettable, copy) NSColor* backgroundColor;
- (void)display;
- (void)setContentSize:(NSSize)size;
@end

@interface NSView (Testing)
- (nullable NSBitmapImageRep*)bitmapImageRepForCachingDisplayInRect:(NSRect)rect;
- (void)cacheDisplayInRect:(NSRect)rect toBitmapImageRep:(NSBitmapImageRep*)picture;
@end

@interface NSTrackingArea (Testing)
@property(readonly) NSTrackingAreaOptions options;
@property(nullable, readonly, weak) id owner;
@end

@interface NSBezierPath (Testing)
@property(readonly) NSRect bounds;
- (BOOL)containsPoint:(NSPoint)point;
@end

@interface NSFont (Testing)
@property(nullable, readonly, copy) NSString* familyName;
@end

@interface NSImageRep : NSObject <NSCopying>
@end

@interface NSBitmapImageRep : NSImageRep
- (nullable NSColor*)colorAtX:(NSInteger)x y:(NSInteger)y;
- (nullable NSData*)representationUsingType:(NSBitmapImageFileType)type
                                 properties:(NSDictionary<NSBitmapImageRepPropertyKey, id>*)values;
@end

#pragma clang assume_nonnull end
