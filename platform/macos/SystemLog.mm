#include "platform/macos/SystemLog.h"

#import <Foundation/Foundation.h>

#include "platform/macos/strings.h"
#include "platform/posix/log_text.h"

namespace quillmont {

void SystemLog::write(std::string_view line) {
  @autoreleasepool {
    // Never as the format itself: volumes may have a percent sign in their names.
    NSLog(@"%@", foundationString(textOfOneLine(line)));
  }
}

}  // namespace quillmont
