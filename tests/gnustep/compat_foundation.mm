#include "tests/gnustep/compat_foundation.h"

#include <errno.h>
#import <objc/runtime.h>
#include <pthread/qos.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <string>

namespace {

NSMutableArray* activityTokens() {
  static NSMutableArray* const tokens = [[NSMutableArray alloc] init];
  return tokens;
}

NSMutableArray* applications() {
  static NSMutableArray* const list = [[NSMutableArray alloc] init];
  return list;
}

thread_local qos_class_t quality = QOS_CLASS_UNSPECIFIED;

}  // namespace

// Here a thread is told which one to name, and takes no more than 15 bytes.
int pthread_setname_np(const char* name) {
  return pthread_setname_np(pthread_self(), std::string(name).substr(0, 15).c_str());
}

int pthread_set_qos_class_self_np(qos_class_t newQuality, int) {
  quality = newQuality;
  return 0;
}

qos_class_t qos_class_self() {
  return quality;
}

// GNUstep's run loop collects every child that ends, also those that others started and wait for; a
// Mac's leaves them alone. Asked for just any child, this answers that there is none.
extern "C" pid_t waitpid(pid_t pid, int* status, int options) {
  if (pid > 0) return wait4(pid, status, options, nullptr);
  errno = ECHILD;
  return -1;
}

@implementation NSFileManager (QMCompat)
- (NSArray*)URLsForDirectory:(NSSearchPathDirectory)directory
                   inDomains:(NSSearchPathDomainMask)domains {
  NSMutableArray* const urls = [NSMutableArray array];
  for (NSString* path in NSSearchPathForDirectoriesInDomains(directory, domains, YES)) {
    [urls addObject:[NSURL fileURLWithPath:path isDirectory:YES]];
  }
  return urls;
}
@end

// A program without a bundle has the folder that holds it for one.
@implementation NSBundle (QMCompat)
- (NSString*)bundlePath {
  if (self != [NSBundle mainBundle]) return _path;
  return [[self executablePath] stringByDeletingLastPathComponent];
}
@end

// GNUstep raises for some lists that are none.
@implementation NSPropertyListSerialization (QMCompat)
+ (void)load {
  Class const type = object_getClass(self);
  method_exchangeImplementations(
      class_getInstanceMethod(type, @selector(propertyListWithData:options:format:error:)),
      class_getInstanceMethod(type, @selector(quietPropertyListWithData:options:format:error:)));
}
+ (id)quietPropertyListWithData:(NSData*)data
                        options:(NSPropertyListReadOptions)options
                         format:(NSPropertyListFormat*)format
                          error:(NSError**)error {
  @try {
    return [self quietPropertyListWithData:data options:options format:format error:error];
  } @catch (NSException* exception) {
    return nil;
  }
}
@end

@implementation NSProcessInfo (QMCompat)
- (id)beginActivityWithOptions:(NSActivityOptions)options reason:(NSString*)reason {
  NSArray* const token = @[ [NSNumber numberWithUnsignedLongLong:options], reason ];
  [activityTokens() addObject:token];
  return token;
}
- (void)endActivity:(id<NSObject>)activity {
  [activityTokens() removeObjectIdenticalTo:activity];
}
@end

// GNUstep's centre is the one that programs share: it tells late, and starts a daemon.
@implementation NSWorkspace (QMCompat)
- (NSNotificationCenter*)notificationCenter {
  static NSNotificationCenter* const center = [[NSNotificationCenter alloc] init];
  return center;
}
@end

@interface QMTestApplication : NSRunningApplication {
  NSString* identifier_;
  pid_t process_;
  NSDate* launched_;
}
- (instancetype)initWithApplication:(const quillmont::testing::RunningApplication&)application;
@end

@implementation QMTestApplication
- (instancetype)initWithApplication:(const quillmont::testing::RunningApplication&)application {
  self = [super init];
  if (self != nil) {
    identifier_ = [application.bundleIdentifier copy];
    process_ = application.processIdentifier;
    launched_ = [application.launchDate retain];
  }
  return self;
}
- (void)dealloc {
  [identifier_ release];
  [launched_ release];
  [super dealloc];
}
- (NSString*)bundleIdentifier {
  return identifier_;
}
- (pid_t)processIdentifier {
  return process_;
}
- (NSDate*)launchDate {
  return launched_;
}
@end

@implementation NSRunningApplication (QMCompat)
+ (NSArray*)runningApplicationsWithBundleIdentifier:(NSString*)identifier {
  NSMutableArray* const found = [NSMutableArray array];
  for (NSRunningApplication* application in applications()) {
    if ([[application bundleIdentifier] isEqualToString:identifier]) [found addObject:application];
  }
  return found;
}
@end

namespace quillmont::testing {

std::size_t activities() {
  return [activityTokens() count];
}

void setRunningApplications(const std::vector<RunningApplication>& list) {
  [applications() removeAllObjects];
  for (const auto& application : list) {
    QMTestApplication* const entry = [[QMTestApplication alloc] initWithApplication:application];
    [applications() addObject:entry];
    [entry release];
  }
}

}  // namespace quillmont::testing
