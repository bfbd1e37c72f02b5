// What the system does for a program: bundle, defaults, files, property lists, timers,
// notifications, activities.
#pragma once

#include <Foundation/collections.h>
#include <Foundation/values.h>

#pragma clang assume_nonnull begin

typedef NSString* NSNotificationName;
typedef NSString* NSRunLoopMode;
extern "C" {
extern const NSRunLoopMode NSDefaultRunLoopMode;
extern const NSRunLoopMode NSRunLoopCommonModes;
}

@interface NSBundle : NSObject
@property(class, readonly, strong) NSBundle* mainBundle;
@property(nullable, readonly, copy) NSString* bundleIdentifier;
@property(readonly, copy) NSString* bundlePath;
@property(nullable, readonly, copy) NSString* executablePath;
@end

@interface NSUserDefaults : NSObject
@property(class, readonly, strong) NSUserDefaults* standardUserDefaults;
+ (void)resetStandardUserDefaults;
- (nullable id)objectForKey:(NSString*)key;
- (void)setObject:(nullable id)value forKey:(NSString*)key;
- (void)setDouble:(double)value forKey:(NSString*)key;
- (void)setBool:(BOOL)value forKey:(NSString*)key;
- (void)removeObjectForKey:(NSString*)key;
- (nullable NSDictionary<NSString*, id>*)persistentDomainForName:(NSString*)name;
- (void)removePersistentDomainForName:(NSString*)name;
- (BOOL)synchronize;
@end

QM_ENUM(NSUInteger, NSSearchPathDirectory){NSLibraryDirectory = 5};
QM_FLAGS(NSUInteger, NSSearchPathDomainMask){NSUserDomainMask = 1};
extern "C" NSArray<NSString*>* NSSearchPathForDirectoriesInDomains(NSSearchPathDirectory directory,
                                                                   NSSearchPathDomainMask domains,
                                                                   BOOL expandTilde);
extern "C" NSString* NSHomeDirectory(void);

@interface NSFileManager : NSObject
@property(class, readonly, strong) NSFileManager* defaultManager;
- (NSArray<NSURL*>*)URLsForDirectory:(NSSearchPathDirectory)directory
                           inDomains:(NSSearchPathDomainMask)domains;
@end

QM_ENUM(NSUInteger, NSPropertyListFormat){NSPropertyListOpenStepFormat = 1,
                                          NSPropertyListXMLFormat_v1_0 = 100,
                                          NSPropertyListBinaryFormat_v1_0 = 200};
QM_FLAGS(NSUInteger, NSPropertyListMutabilityOptions){NSPropertyListImmutable = 0};
typedef NSPropertyListMutabilityOptions NSPropertyListReadOptions;
typedef NSUInteger NSPropertyListWriteOptions;

@interface NSPropertyListSerialization : NSObject
+ (BOOL)propertyList:(id)list isValidForFormat:(NSPropertyListFormat)format;
+ (nullable NSData*)dataWithPropertyList:(id)list
                                  format:(NSPropertyListFormat)format
                                 options:(NSPropertyListWriteOptions)options
                                   error:(NSError* _Nullable* _Nullable)error;
+ (nullable id)propertyListWithData:(NSData*)data
                            options:(NSPropertyListReadOptions)options
                             format:(nullable NSPropertyListFormat*)format
                              error:(NSError* _Nullable* _Nullable)error;
@end

@interface NSTimer : NSObject
@property(copy) NSDate* fireDate;
@property(readonly) NSTimeInterval timeInterval;
@property NSTimeInterval tolerance;
@property(readonly, getter=isValid) BOOL valid;
+ (NSTimer*)timerWithTimeInterval:(NSTimeInterval)interval
                          repeats:(BOOL)repeats
                            block:(void (^)(NSTimer* timer))block;
+ (NSTimer*)timerWithTimeInterval:(NSTimeInterval)interval
                           target:(id)target
                         selector:(SEL)selector
                         userInfo:(nullable id)userInfo
                          repeats:(BOOL)repeats;
- (void)fire;
- (void)invalidate;
@end

@interface NSRunLoop : NSObject
@property(class, readonly, strong) NSRunLoop* currentRunLoop;
@property(class, readonly, strong) NSRunLoop* mainRunLoop;
- (void)addTimer:(NSTimer*)timer forMode:(NSRunLoopMode)mode;
- (BOOL)runMode:(NSRunLoopMode)mode beforeDate:(NSDate*)date;
- (void)performBlock:(void (^)(void))block;
- (void)performInModes:(NSArray<NSRunLoopMode>*)modes block:(void (^)(void))block;
@end

@interface NSThread : NSObject
@property(class, readonly) BOOL isMainThread;
@end

@interface NSNotification : NSObject <NSCopying>
@property(readonly, copy) NSNotificationName name;
@property(nullable, readonly, retain) id object;
@property(nullable, readonly, copy) NSDictionary* userInfo;
+ (instancetype)notificationWithName:(NSNotificationName)name object:(nullable id)object;
@end

@class NSOperationQueue;

@interface NSNotificationCenter : NSObject
@property(class, readonly, strong) NSNotificationCenter* defaultCenter;
- (void)addObserver:(id)observer
           selector:(SEL)selector
               name:(nullable NSNotificationName)name
             object:(nullable id)object;
- (id<NSObject>)addObserverForName:(nullable NSNotificationName)name
                            object:(nullable id)object
                             queue:(nullable NSOperationQueue*)queue
                        usingBlock:(void (^)(NSNotification* notification))block;
- (void)postNotificationName:(NSNotificationName)name object:(nullable id)object;
- (void)postNotificationName:(NSNotificationName)name
                      object:(nullable id)object
                    userInfo:(nullable NSDictionary*)userInfo;
- (void)removeObserver:(id)observer;
- (void)removeObserver:(id)observer
                  name:(nullable NSNotificationName)name
                object:(nullable id)object;
@end

QM_FLAGS(uint64_t, NSActivityOptions){
    NSActivityUserInitiated = 0x00FFFFFFULL,
    NSActivityUserInitiatedAllowingIdleSystemSleep = 0x00EFFFFFULL,
    NSActivityBackground = 0x000000FFULL};

@interface NSProcessInfo : NSObject
@property(class, readonly, strong) NSProcessInfo* processInfo;
@property(readonly) int processIdentifier;
@property(copy) NSString* processName;
@property(readonly, copy) NSArray<NSString*>* arguments;
@property(readonly) NSTimeInterval systemUptime;
- (id<NSObject>)beginActivityWithOptions:(NSActivityOptions)options reason:(NSString*)reason;
- (void)endActivity:(id<NSObject>)activity;
@end

#pragma clang assume_nonnull end
