#include "platform/macos/MacWorkspace.h"

#import <AppKit/AppKit.h>
#include <gtest/gtest.h>

#include <string>

namespace quillmont {
namespace {

/// What the system posts when a volume comes or goes.
void post(NSString* name) {
  @autoreleasepool {
    [[[NSWorkspace sharedWorkspace] notificationCenter]
        postNotificationName:name
                      object:[NSWorkspace sharedWorkspace]];
  }
}

TEST(MacWorkspace, TellsOfVolumesThatComeAndGo) {
  MacWorkspace workspace;
  std::string story;
  workspace.observeVolumes(VolumeEvent::didMount, [&](VolumeEvent event) {
    EXPECT_EQ(event, VolumeEvent::didMount);
    story += 'm';
  });
  workspace.observeVolumes(VolumeEvent::didUnmount, [&](VolumeEvent event) {
    EXPECT_EQ(event, VolumeEvent::didUnmount);
    story += 'u';
  });
  post(NSWorkspaceDidMountNotification);
  post(NSWorkspaceDidUnmountNotification);
  post(NSWorkspaceWillUnmountNotification);
  post(NSWorkspaceDidMountNotification);
  EXPECT_EQ(story, "mum");
}

TEST(MacWorkspace, IsNotToldOnTheProcesssOwnCentre) {
  MacWorkspace workspace;
  workspace.observeVolumes(VolumeEvent::didMount, [](VolumeEvent) { FAIL(); });
  @autoreleasepool {
    [[NSNotificationCenter defaultCenter] postNotificationName:NSWorkspaceDidMountNotification
                                                        object:nil];
  }
}

TEST(MacWorkspace, TellsNobodyOnceItIsGone) {
  {
    MacWorkspace workspace;
    workspace.observeVolumes(VolumeEvent::didMount, [](VolumeEvent) { FAIL(); });
  }
  post(NSWorkspaceDidMountNotification);
}

TEST(MacWorkspace, AnObserverMayAddAnotherOne) {
  MacWorkspace workspace;
  int first = 0, second = 0;
  workspace.observeVolumes(VolumeEvent::didMount, [&](VolumeEvent) {
    if (++first > 1) return;
    workspace.observeVolumes(VolumeEvent::didMount, [&](VolumeEvent) { ++second; });
  });
  post(NSWorkspaceDidMountNotification);
  const int afterOne = second;
  post(NSWorkspaceDidMountNotification);
  EXPECT_EQ(first, 2);
  EXPECT_EQ(second, afterOne + 1);
}

TEST(MacWorkspace, KnowsOfNoApplicationUnderAnUnknownIdentifier) {
  MacWorkspace workspace;
  EXPECT_TRUE(workspace.runningApplications("com.example.Nobody").empty());
}

}  // namespace
}  // namespace quillmont
