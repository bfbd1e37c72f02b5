// The system's symbols. Main thread.
#pragma once

#import <AppKit/AppKit.h>

#include <string>

#include "platform/view/Font.h"

namespace quillmont {

/// The symbol `name` beside letters of that font, as a template to be tinted; autoreleased. For a
/// name that the system does not know, an empty square stands.
NSImage* symbolImage(const std::string& name, const Font& font);

}  // namespace quillmont
