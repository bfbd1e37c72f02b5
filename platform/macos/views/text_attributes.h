// How texts are set, alike where they are measured and where they are shown. Main thread.
#pragma once

#import <AppKit/AppKit.h>

#include <optional>
#include <string>

#include "platform/view/NativeView.h"

namespace quillmont {

/// The system's font in that size and weight; autoreleased.
NSFont* fontFor(const Font& font);

NSFontWeight fontWeight(FontWeight weight);

/// The text as a label shows it; autoreleased.
NSAttributedString* attributedText(const NativeLabel& label);

/// The same for text beside a control: one line, which ends in an ellipsis if it has to.
NSAttributedString* attributedTitle(const std::string& title, const Font& font, const Color& color);

}  // namespace quillmont
