#include "platform/macos/desktop/alert_dialog.h"

#import <AppKit/AppKit.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/macos/Call.h"
#include "platform/macos/Retained.h"
#include "platform/macos/strings.h"

namespace quillmont {
namespace {

const Alert kQuestion = {"Really?", "All of it goes.", AlertStyle::warning, {"Go", "取消", "Wait"}};

/// Has a modal loop look at what has happened to its window.
void wakeLoop() {
  [NSApp postEvent:[NSEvent otherEventWithType:NSEventTypeApplicationDefined
                                      location:NSZeroPoint
                                 modifierFlags:0
                                     timestamp:0
                                  windowNumber:0
                                       context:nil
                                       subtype:0
                                         data1:0
                                         data2:0]
           atStart:NO];
}

/// Runs the alert and does `action` to its window as soon as that is open. The loop is woken until
/// it ends, since it may have been about to sleep.
std::int64_t answered(const Alert& alert, const std::function<void(NSWindow*)>& action) {
  [NSApplication sharedApplication];
  bool done = false;
  const auto target = adopt([[QMCall alloc] initWithFunction:[&] {
    if (!done && [[NSApp modalWindow] isVisible]) {
      done = true;
      action([NSApp modalWindow]);
    }
    wakeLoop();
  }]);
  NSTimer* const timer = [NSTimer timerWithTimeInterval:0.02
                                                 target:target
                                               selector:@selector(fire:)
                                               userInfo:nil
                                                repeats:YES];
  [[NSRunLoop currentRunLoop] addTimer:timer forMode:NSModalPanelRunLoopMode];
  const auto answer = runAlertDialog(alert);
  [timer invalidate];
  EXPECT_TRUE(done);
  return answer;
}

template <class View>
void collect(NSView* view, std::vector<View*>& found) {
  if ([view isKindOfClass:[View class]]) found.push_back(static_cast<View*>(view));
  for (NSView* child in [view subviews]) collect(child, found);
}

NSButton* buttonOf(NSWindow* window, const std::string& title) {
  std::vector<NSButton*> buttons;
  collect([window contentView], buttons);
  for (NSButton* const button : buttons) {
    if ([[button title] isEqual:foundationString(title)]) return button;
  }
  return nil;
}

bool shows(NSWindow* window, const std::string& text) {
  std::vector<NSTextField*> fields;
  collect([window contentView], fields);
  for (NSTextField* const field : fields) {
    if ([[field stringValue] isEqual:foundationString(text)]) return true;
  }
  return false;
}

TEST(AlertDialog, EachButtonHasItsAnswer) {
  @autoreleasepool {
    for (std::size_t index = 0; index < kQuestion.buttonTitles.size(); ++index) {
      const auto& title = kQuestion.buttonTitles[index];
      EXPECT_EQ(answered(kQuestion, [&](NSWindow* w) { [buttonOf(w, title) performClick:nil]; }),
                kAlertFirstButtonReturn + static_cast<std::int64_t>(index));
    }
  }
}

TEST(AlertDialog, ShowsItsTextsAsTheyAre) {
  @autoreleasepool {
    Alert alert = kQuestion;
    alert.messageText = "100% <b>名字</b>";
    answered(alert, [](NSWindow* window) {
      EXPECT_TRUE(shows(window, "100% <b>名字</b>"));
      EXPECT_TRUE(shows(window, "All of it goes."));
      [buttonOf(window, "Go") performClick:nil];
    });
  }
}

TEST(AlertDialog, ReturnIsForTheFirstButtonAndEscapeForTheOneThatCancels) {
  @autoreleasepool {
    answered(kQuestion, [](NSWindow* window) {
      EXPECT_TRUE([[buttonOf(window, "Go") keyEquivalent] isEqual:@"\r"]);
      EXPECT_TRUE([[buttonOf(window, "取消") keyEquivalent] isEqual:@"\033"]);
      EXPECT_FALSE([[buttonOf(window, "Wait") keyEquivalent] isEqual:@"\033"]);
      [buttonOf(window, "Go") performClick:nil];
    });
  }
}

TEST(AlertDialog, WithoutACancellingButtonEscapeIsForTheLast) {
  @autoreleasepool {
    Alert alert = kQuestion;
    alert.buttonTitles = {"Go", "Stay"};
    answered(alert, [](NSWindow* window) {
      EXPECT_TRUE([[buttonOf(window, "Stay") keyEquivalent] isEqual:@"\033"]);
      [buttonOf(window, "Go") performClick:nil];
    });
  }
}

TEST(AlertDialog, AButtonThatIsAloneKeepsReturn) {
  @autoreleasepool {
    Alert alert = kQuestion;
    alert.buttonTitles = {"取消"};
    EXPECT_EQ(answered(alert,
                       [](NSWindow* window) {
                         EXPECT_TRUE([[buttonOf(window, "取消") keyEquivalent] isEqual:@"\r"]);
                         [buttonOf(window, "取消") performClick:nil];
                       }),
              kAlertFirstButtonReturn);
  }
}

TEST(AlertDialog, WithoutAnyButtonItDoesNotAsk) {
  Alert alert = kQuestion;
  alert.buttonTitles = {};
  EXPECT_EQ(runAlertDialog(alert), kAlertAborted);
}

}  // namespace
}  // namespace quillmont
