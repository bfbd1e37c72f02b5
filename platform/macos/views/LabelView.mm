#include "platform/macos/views/LabelView.h"

#include "platform/macos/views/text_attributes.h"

@implementation QMLabelView

- (NSView*)hitTest:(NSPoint)point {
  return takesMouse ? [super hitTest:point] : nil;
}

- (BOOL)acceptsFirstMouse:(NSEvent*)event {
  return YES;
}

@end

namespace quillmont {

LabelView::LabelView() : view_(adopt([[QMLabelView alloc] initWithFrame:NSZeroRect])) {
  [view_ setEditable:NO];
  [view_ setSelectable:NO];
  [view_ setBezeled:NO];
  [view_ setBordered:NO];
  [view_ setDrawsBackground:NO];
}

void LabelView::take(const NativeProperties& properties) {
  const auto& label = contentOf<NativeLabel>(properties);
  const bool isSingleLine = label.lineLimit == 1;
  NSTextFieldCell* const cell = [view_ cell];
  [cell setWraps:!isSingleLine];
  [cell setTruncatesLastVisibleLine:YES];
  [view_ setLineBreakMode:isSingleLine ? NSLineBreakByTruncatingTail : NSLineBreakByWordWrapping];
  [view_ setMaximumNumberOfLines:label.lineLimit ? *label.lineLimit : 0];
  [view_ setAttributedStringValue:attributedText(label)];
  [view_ setAlphaValue:properties.opacity];
}

}  // namespace quillmont
