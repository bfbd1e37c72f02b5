#include "platform/macos/MacBundle.h"

#import <Foundation/Foundation.h>

#include "platform/macos/strings.h"

namespace quillmont {
namespace {

std::optional<std::string> optionalString(NSString* text) {
  if (text == nil) return std::nullopt;
  return utf8String(text);
}

}  // namespace

MacBundle::MacBundle() {
  @autoreleasepool {
    NSBundle* const bundle = [NSBundle mainBundle];
    identifier_ = optionalString([bundle bundleIdentifier]);
    path_ = utf8String([bundle bundlePath]);
    executablePath_ = optionalString([bundle executablePath]);
  }
}

}  // namespace quillmont
