#include "platform/macos/strings.h"

#include "platform/macos/Retained.h"

namespace quillmont {

NSString* foundationString(std::string_view text) {
  const auto make = [text](NSStringEncoding encoding) {
    return [[[NSString alloc] initWithBytes:text.data() length:text.size()
                                   encoding:encoding] autorelease];
  };
  NSString* const result = make(NSUTF8StringEncoding);
  return result != nil ? result : make(NSISOLatin1StringEncoding);
}

std::string utf8String(NSString* text) {
  NSData* const bytes = [text dataUsingEncoding:NSUTF8StringEncoding allowLossyConversion:YES];
  if (bytes == nil) return {};
  return {static_cast<const char*>([bytes bytes]), [bytes length]};
}

}  // namespace quillmont
