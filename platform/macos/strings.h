// Strings between the program, which speaks UTF-8, and Foundation.
#pragma once

#import <Foundation/Foundation.h>

#include <string>
#include <string_view>

namespace quillmont {

/// Autoreleased. What is no UTF-8 is read as Latin-1, so that no text is ever lost.
NSString* foundationString(std::string_view text);

/// Empty for nil.
std::string utf8String(NSString* text);

}  // namespace quillmont
