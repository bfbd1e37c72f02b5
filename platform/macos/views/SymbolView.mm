#include "platform/macos/views/SymbolView.h"

#include "platform/macos/views/symbols.h"
#include "platform/macos/views/theme.h"

@implementation QMSymbolView

- (NSView*)hitTest:(NSPoint)point {
  return takesMouse ? [super hitTest:point] : nil;
}

- (BOOL)acceptsFirstMouse:(NSEvent*)event {
  return YES;
}

@end

namespace quillmont {

SymbolView::SymbolView() : view_(adopt([[QMSymbolView alloc] initWithFrame:NSZeroRect])) {
  [view_ setImageScaling:NSImageScaleProportionallyDown];
  [view_ setImageAlignment:NSImageAlignCenter];
}

void SymbolView::take(const NativeProperties& properties) {
  const auto& symbol = contentOf<NativeSymbol>(properties);
  [view_ setImage:symbolImage(symbol.name, symbol.font)];
  [view_ setContentTintColor:colorFor(symbol.color)];
  [view_ setAlphaValue:properties.opacity];
}

}  // namespace quillmont
