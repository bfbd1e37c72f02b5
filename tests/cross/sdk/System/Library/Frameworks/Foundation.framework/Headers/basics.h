// Types and protocols that all of Foundation stands on.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <dispatch/dispatch.h>
#include <objc/NSObject.h>
#include <objc/runtime.h>
#include <stdarg.h>

#pragma clang assume_nonnull begin

@class NSArray<__covariant ObjectType>, NSDictionary<__covariant KeyType, __covariant ObjectType>;
@class NSData, NSDate, NSError, NSNotification, NSString, NSURL;

typedef double NSTimeInterval;
typedef unsigned short unichar;
typedef CGPoint NSPoint;
typedef CGSize NSSize;
typedef CGRect NSRect;
struct _NSRange {
  NSUInteger location, length;
};
typedef struct _NSRange NSRange;
struct NSEdgeInsets {
  CGFloat top, left, bottom, right;
};
typedef struct NSEdgeInsets NSEdgeInsets;
typedef struct _NSZone NSZone;

QM_ENUM(NSUInteger, NSRectEdge){NSRectEdgeMinX = 0,          NSRectEdgeMinY = 1,
                                NSRectEdgeMaxX = 2,          NSRectEdgeMaxY = 3,
                                NSMinXEdge = NSRectEdgeMinX, NSMinYEdge = NSRectEdgeMinY,
                                NSMaxXEdge = NSRectEdgeMaxX, NSMaxYEdge = NSRectEdgeMaxY};

QM_ENUM(NSInteger, NSComparisonResult){NSOrderedAscending = -1, NSOrderedSame = 0,
                                       NSOrderedDescending = 1};
typedef NSComparisonResult (^NSComparator)(id a, id b);
enum : NSInteger { NSNotFound = __LONG_MAX__ };

extern "C" {
extern const NSPoint NSZeroPoint;
extern const NSSize NSZeroSize;
extern const NSRect NSZeroRect;
void NSLog(NSString* format, ...);
Class _Nullable NSClassFromString(NSString* name);
SEL NSSelectorFromString(NSString* name);
BOOL NSEqualPoints(NSPoint a, NSPoint b);
BOOL NSEqualRects(NSRect a, NSRect b);
BOOL NSEqualSizes(NSSize a, NSSize b);
BOOL NSPointInRect(NSPoint point, NSRect rect);
BOOL NSIntersectsRect(NSRect a, NSRect b);
BOOL NSIsEmptyRect(NSRect rect);
NSRect NSInsetRect(NSRect rect, CGFloat dx, CGFloat dy);
NSRect NSOffsetRect(NSRect rect, CGFloat dx, CGFloat dy);
NSRect NSIntersectionRect(NSRect a, NSRect b);
NSRect NSUnionRect(NSRect a, NSRect b);
}

static inline NSPoint NSMakePoint(CGFloat x, CGFloat y) {
  return {x, y};
}
static inline NSSize NSMakeSize(CGFloat width, CGFloat height) {
  return {width, height};
}
static inline NSRect NSMakeRect(CGFloat x, CGFloat y, CGFloat width, CGFloat height) {
  return {{x, y}, {width, height}};
}
static inline NSRange NSMakeRange(NSUInteger location, NSUInteger length) {
  return {location, length};
}
static inline NSEdgeInsets NSEdgeInsetsMake(CGFloat top, CGFloat left, CGFloat bottom,
                                            CGFloat right) {
  return {top, left, bottom, right};
}
static inline CGFloat NSMinX(NSRect rect) {
  return rect.origin.x;
}
static inline CGFloat NSMinY(NSRect rect) {
  return rect.origin.y;
}
static inline CGFloat NSMaxX(NSRect rect) {
  return rect.origin.x + rect.size.width;
}
static inline CGFloat NSMaxY(NSRect rect) {
  return rect.origin.y + rect.size.height;
}
static inline CGFloat NSMidX(NSRect rect) {
  return rect.origin.x + rect.size.width * 0.5;
}
static inline CGFloat NSMidY(NSRect rect) {
  return rect.origin.y + rect.size.height * 0.5;
}
static inline CGFloat NSWidth(NSRect rect) {
  return rect.size.width;
}
static inline CGFloat NSHeight(NSRect rect) {
  return rect.size.height;
}

@protocol NSCopying
- (id)copyWithZone:(NSZone* _Nullable)zone;
@end

// What `for (x in collection)` compiles to.
struct NSFastEnumerationState {
  unsigned long state;
  id __unsafe_unretained _Nullable* _Nullable itemsPtr;
  unsigned long* _Nullable mutationsPtr;
  unsigned long extra[5];
};
typedef struct NSFastEnumerationState NSFastEnumerationState;

@protocol NSFastEnumeration
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id __unsafe_unretained _Nullable[_Nonnull])buffer
                                    count:(NSUInteger)length;
@end

@interface NSObject (NSThreadPerformAdditions)
- (void)performSelectorOnMainThread:(SEL)selector
                         withObject:(nullable id)argument
                      waitUntilDone:(BOOL)wait;
- (void)performSelectorOnMainThread:(SEL)selector
                         withObject:(nullable id)argument
                      waitUntilDone:(BOOL)wait
                              modes:(nullable NSArray<NSString*>*)modes;
@end

@interface NSObject (NSDelayedPerforming)
- (void)performSelector:(SEL)selector
             withObject:(nullable id)argument
             afterDelay:(NSTimeInterval)delay
                inModes:(NSArray<NSString*>*)modes;
+ (void)cancelPreviousPerformRequestsWithTarget:(id)target;
@end

#pragma clang assume_nonnull end
