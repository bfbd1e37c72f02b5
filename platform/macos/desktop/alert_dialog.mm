#include "platform/macos/desktop/alert_dialog.h"

#import <AppKit/AppKit.h>

#include <algorithm>

#include "platform/macos/Retained.h"
#include "platform/macos/desktop/keyboard.h"
#include "platform/macos/strings.h"

namespace quillmont {
namespace {

constexpr char kCancelTitle[] = "取消";

NSAlertStyle nativeStyle(AlertStyle style) {
  if (style == AlertStyle::informational) return NSAlertStyleInformational;
  if (style == AlertStyle::critical) return NSAlertStyleCritical;
  return NSAlertStyleWarning;
}

/// AppKit itself knows a cancelling button by its English name alone.
std::size_t cancellingButton(const std::vector<std::string>& titles) {
  const auto cancel = std::find(titles.begin(), titles.end(), kCancelTitle);
  return cancel == titles.end() ? titles.size() - 1
                                : static_cast<std::size_t>(cancel - titles.begin());
}

Retained<NSAlert*> makeAlert(const Alert& alert) {
  const auto result = adopt([[NSAlert alloc] init]);
  [result setMessageText:foundationString(alert.messageText)];
  [result setInformativeText:foundationString(alert.informativeText)];
  [result setAlertStyle:nativeStyle(alert.style)];
  const auto cancelling = cancellingButton(alert.buttonTitles);
  for (std::size_t index = 0; index < alert.buttonTitles.size(); ++index) {
    NSButton* const button =
        [result addButtonWithTitle:foundationString(alert.buttonTitles[index])];
    // The first one keeps Return.
    if (index > 0 && index == cancelling) [button setKeyEquivalent:@"\033"];
  }
  return result;
}

}  // namespace

std::int64_t runAlertDialog(const Alert& alert) {
  if (alert.buttonTitles.empty()) return kAlertAborted;
  @autoreleasepool {
    const auto dialog = makeAlert(alert);
    // The end of the session, or of the program, does not wait for an answer.
    [(NSWindow*)[dialog window] setPreventsApplicationTerminationWhenModal:NO];
    // Else it may come up behind the windows of the program in front.
    [NSApp activateIgnoringOtherApps:YES];
    const auto before = share([NSApp keyWindow]);
    const NSInteger answer = [dialog runModal];
    if (![before isVisible] && [NSApp keyWindow] == nil) giveKeyboardBack();
    return answer >= NSAlertFirstButtonReturn
               ? kAlertFirstButtonReturn + (answer - NSAlertFirstButtonReturn)
               : kAlertAborted;
  }
}

}  // namespace quillmont
