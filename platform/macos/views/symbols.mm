#include "platform/macos/views/symbols.h"

#include <map>
#include <tuple>

#include "platform/macos/Retained.h"
#include "platform/macos/strings.h"
#include "platform/macos/views/text_attributes.h"

namespace quillmont {
namespace {

NSImage* unknownSymbol(double pointSize) {
  const double side = 1.2 * pointSize;
  NSImage* const square = [NSImage imageWithSize:NSMakeSize(side, side)
                                         flipped:NO
                                  drawingHandler:^BOOL(NSRect rect) {
                                    const double inset = rect.size.width / 6;
                                    NSBezierPath* const path = [NSBezierPath
                                        bezierPathWithRect:NSInsetRect(rect, inset, inset)];
                                    [path setLineWidth:rect.size.width / 14];
                                    [[NSColor blackColor] setStroke];
                                    [path stroke];
                                    return YES;
                                  }];
  [square setTemplate:YES];
  return square;
}

NSImage* makeImage(const std::string& name, const Font& font) {
  NSImage* const image = [NSImage imageWithSystemSymbolName:foundationString(name)
                                   accessibilityDescription:nil];
  NSImageSymbolConfiguration* const like =
      [NSImageSymbolConfiguration configurationWithPointSize:font.size
                                                      weight:fontWeight(font.weight)];
  NSImage* const configured = [image imageWithSymbolConfiguration:like];
  return configured != nil ? configured : unknownSymbol(font.size);
}

}  // namespace

/// A list of cards shows the same few over and over.
NSImage* symbolImage(const std::string& name, const Font& font) {
  using Key = std::tuple<std::string, double, FontWeight>;
  static auto& images = *new std::map<Key, Retained<NSImage*>>;
  constexpr std::size_t kMost = 64;
  const Key key(name, font.size, font.weight);
  const auto found = images.find(key);
  if (found != images.end()) return found->second;
  if (images.size() >= kMost) images.clear();
  return images.emplace(key, share(makeImage(name, font))).first->second;
}

}  // namespace quillmont
