// A mount on its own, for tests: views made by hand, and what the user did to them.
#pragma once

#import <AppKit/AppKit.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/macos/Retained.h"
#include "platform/macos/views/AppKitMount.h"
#include "platform/macos/views/mounted_views.h"
#include "tests/support/HandmadeViewsTest.h"
#include "tests/support/Turns.h"

namespace quillmont::testing {

/// On a window of its own, away from where the pointer is at first.
class MountTest : public HandmadeViewsTest, protected Turns {
 protected:
  MountTest() {
    [window setReleasedWhenClosed:NO];
    [[window contentView] addSubview:panelView(*mount)];
    [NSApp activateIgnoringOtherApps:YES];
    [window makeKeyAndOrderFront:nil];
    turnUntil([this] { return [window isKeyWindow]; });
  }

  ~MountTest() override {
    mount.reset();
    [window close];
    turn();
  }

  void apply(const std::vector<ViewChange>& changes) override {
    @autoreleasepool {
      mount->apply(changes, kPanelSize);
    }
  }

  NSView* view(ViewId id) { return mountedView(*mount, id); }
  template <class View>
  View* as(ViewId name) {
    NSView* const found = view(name);
    return [found isKindOfClass:[View class]] ? static_cast<View*>(found) : nil;
  }

  /// What colour a point of the view has.
  NSColor* pixel(NSView* seen, NSInteger x, NSInteger y) {
    [window display];
    NSBitmapImageRep* const picture = [seen bitmapImageRepForCachingDisplayInRect:[seen bounds]];
    [seen cacheDisplayInRect:[seen bounds] toBitmapImageRep:picture];
    const auto scale = static_cast<NSInteger>([window backingScaleFactor]);
    return [[picture colorAtX:x * scale
                            y:y * scale] colorUsingColorSpace:[NSColorSpace sRGBColorSpace]];
  }

  /// What is seen of a view, in the panel's coordinates.
  NSRect looks(ViewId id) {
    NSView* const seen = view(id);
    return [seen convertRect:[seen alignmentRectForFrame:[seen bounds]] toView:panelView(*mount)];
  }

  /// What happens at a point of the panel goes to what the panel has there.
  void press(NSPoint point) { send(NSEventTypeLeftMouseDown, point); }
  void drag(NSPoint point) { send(NSEventTypeLeftMouseDragged, point); }
  void release(NSPoint point) { send(NSEventTypeLeftMouseUp, point); }
  /// A release that waits in the queue is found by controls that follow the mouse by themselves.
  void click(NSPoint point) {
    [NSApp postEvent:mouseEvent(NSEventTypeLeftMouseUp, point, window) atStart:NO];
    press(point);
    turn();
  }

  void type(NSString* characters, unsigned short code = 0) {
    [window sendEvent:[NSEvent keyEventWithType:NSEventTypeKeyDown
                                             location:NSZeroPoint
                                        modifierFlags:0
                                            timestamp:0
                                         windowNumber:[window windowNumber]
                                              context:nil
                                           characters:characters
                          charactersIgnoringModifiers:characters
                                            isARepeat:NO
                                              keyCode:code]];
  }

  NSEvent* mouseEvent(NSEventType type, NSPoint point, NSWindow* target) {
    NSView* const panel = panelView(*mount);
    return [NSEvent
        mouseEventWithType:type
                  location:[panel convertPoint:point toView:nil]
             modifierFlags:0
                 timestamp:static_cast<NSTimeInterval>([[NSProcessInfo processInfo] systemUptime])
              windowNumber:[target windowNumber]
                   context:nil
               eventNumber:0
                clickCount:1
                  pressure:1];
  }

  void send(NSEventType type, NSPoint point) {
    @autoreleasepool {
      [window sendEvent:mouseEvent(type, point, window)];
    }
  }

  std::unique_ptr<AppKitMount> mount = std::make_unique<AppKitMount>(actions);
  const Retained<NSWindow*> window =
      adopt([[NSWindow alloc] initWithContentRect:NSMakeRect(20, 20, 320, 400)
                                        styleMask:NSWindowStyleMaskTitled
                                          backing:NSBackingStoreBuffered
                                            defer:NO]);
};

}  // namespace quillmont::testing
