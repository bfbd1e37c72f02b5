#include "platform/macos/views/theme.h"

#include "platform/macos/Retained.h"

namespace quillmont {
namespace {

NSColor* systemColor(Color::Name name) {
  switch (name) {
    case Color::Name::primary:
      return [NSColor labelColor];
    case Color::Name::secondary:
      return [NSColor secondaryLabelColor];
    case Color::Name::red:
      return [NSColor systemRedColor];
    case Color::Name::orange:
      return [NSColor systemOrangeColor];
    case Color::Name::green:
      return [NSColor systemGreenColor];
    case Color::Name::cyan:
      return [NSColor systemCyanColor];
    case Color::Name::white:
      return [NSColor whiteColor];
    case Color::Name::black:
      return [NSColor blackColor];
    case Color::Name::clear:
      return [NSColor clearColor];
    case Color::Name::separator:
      return [NSColor separatorColor];
    case Color::Name::controlBackground:
      return [NSColor controlBackgroundColor];
    case Color::Name::windowBackground:
      return [NSColor windowBackgroundColor];
  }
  return [NSColor labelColor];
}

/// What `color` is at the moment, with its alpha multiplied.
NSColor* fadedNow(NSColor* color, double factor) {
  NSColor* const plain = [color colorUsingColorSpace:[NSColorSpace sRGBColorSpace]];
  if (plain == nil) return [color colorWithAlphaComponent:factor];
  return [plain colorWithAlphaComponent:[plain alphaComponent] * factor];
}

}  // namespace

/// AppKit itself can only replace a colour's alpha, which differs between light and dark.
NSColor* withOpacity(NSColor* color, double factor) {
  if (factor == 1) return color;
  const auto kept = share(color);
  return [NSColor colorWithName:nil
                dynamicProvider:^NSColor*(NSAppearance* appearance) {
                  __block NSColor* result = nil;
                  [appearance performAsCurrentDrawingAppearance:^{
                    result = [fadedNow(kept, factor) retain];
                  }];
                  return [result autorelease];
                }];
}

NSColor* colorFor(const Color& color) {
  return withOpacity(systemColor(color.name), color.alpha);
}

}  // namespace quillmont
