#include "platform/macos/MacWorkspace.h"

#import <AppKit/AppKit.h>

#include <algorithm>
#include <utility>

#include "platform/macos/Retained.h"
#include "platform/macos/strings.h"

/// Hands one kind of volume event on.
@interface QMVolumeObserver : NSObject {
  quillmont::VolumeEvent event_;
  quillmont::VolumeObserver observer_;
}
- (instancetype)initWithEvent:(quillmont::VolumeEvent)event
                     observer:(quillmont::VolumeObserver)observer;
- (void)volumeChanged:(NSNotification*)notification;
@end

@implementation QMVolumeObserver

- (instancetype)initWithEvent:(quillmont::VolumeEvent)event
                     observer:(quillmont::VolumeObserver)observer {
  self = [super init];
  if (self != nil) {
    event_ = event;
    observer_ = std::move(observer);
  }
  return self;
}

- (void)volumeChanged:(NSNotification*)notification {
  (void)notification;
  const auto observer = observer_;
  observer(event_);
}

@end

namespace quillmont {
namespace {

/// Volumes are told of on the workspace's own notification centre, not on the process's.
NSNotificationCenter* volumeNotifications() {
  return [[NSWorkspace sharedWorkspace] notificationCenter];
}

NSString* notificationName(VolumeEvent event) {
  return event == VolumeEvent::didMount ? NSWorkspaceDidMountNotification
                                        : NSWorkspaceDidUnmountNotification;
}

/// In seconds. The system does not know it of a program that the service manager has started at
/// login: before all others, then.
double launchTime(NSRunningApplication* application) {
  NSDate* const date = [application launchDate];
  return [(date != nil ? date : [NSDate distantPast]) timeIntervalSinceReferenceDate];
}

}  // namespace

struct MacWorkspace::Observers {
  std::vector<Retained<QMVolumeObserver*>> all;
};

MacWorkspace::MacWorkspace() : observers_(std::make_unique<Observers>()) {}

MacWorkspace::~MacWorkspace() {
  @autoreleasepool {
    for (const auto& observer : observers_->all) {
      [volumeNotifications() removeObserver:observer.get()];
    }
  }
}

void MacWorkspace::observeVolumes(VolumeEvent event, VolumeObserver observer) {
  @autoreleasepool {
    auto target = adopt([[QMVolumeObserver alloc] initWithEvent:event
                                                       observer:std::move(observer)]);
    [volumeNotifications() addObserver:target.get()
                              selector:@selector(volumeChanged:)
                                  name:notificationName(event)
                                object:nil];
    observers_->all.push_back(std::move(target));
  }
}

std::vector<std::int32_t> MacWorkspace::runningApplications(const std::string& bundleIdentifier) {
  @autoreleasepool {
    std::vector<std::pair<double, std::int32_t>> running;
    for (NSRunningApplication* application in [NSRunningApplication
             runningApplicationsWithBundleIdentifier:foundationString(bundleIdentifier)]) {
      running.emplace_back(launchTime(application), [application processIdentifier]);
    }
    std::stable_sort(running.begin(), running.end(),
                     [](const auto& one, const auto& other) { return one.first < other.first; });
    std::vector<std::int32_t> identifiers;
    for (const auto& entry : running) identifiers.push_back(entry.second);
    return identifiers;
  }
}

}  // namespace quillmont
