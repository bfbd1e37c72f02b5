#include "platform/macos/desktop/keyboard.h"

#import <AppKit/AppKit.h>

namespace quillmont {

void giveKeyboardBack() {
  if ([NSApp isActive] && [NSApp modalWindow] == nil) [NSApp hide:nil];
}

}  // namespace quillmont
