// The missing parts of Foundation, and those of the workspace that need no window.
#pragma once

#import <AppKit/AppKit.h>

#include <cstddef>
#include <vector>

@interface NSFileManager (QMCompat)
- (NSArray*)URLsForDirectory:(NSSearchPathDirectory)directory
                   inDomains:(NSSearchPathDomainMask)domains;
@end

@interface NSPropertyListSerialization (QMCompat)
+ (id)quietPropertyListWithData:(NSData*)data
                        options:(NSPropertyListReadOptions)options
                         format:(NSPropertyListFormat*)format
                          error:(NSError**)error;
@end

namespace quillmont::testing {

/// How many activities have begun and not ended.
std::size_t activities();

struct RunningApplication {
  NSString* bundleIdentifier;
  pid_t processIdentifier;
  NSDate* launchDate;  ///< nil where the system does not know it
};

/// What is running from now on.
void setRunningApplications(const std::vector<RunningApplication>& applications);

}  // namespace quillmont::testing
