#include "platform/macos/views/CheckboxView.h"

#include "platform/macos/views/text_attributes.h"

@implementation QMCheckboxView

- (id)initWithFrame:(NSRect)frame {
  self = [super initWithFrame:frame];
  if (self == nil) return nil;
  [self setButtonType:NSButtonTypeSwitch];
  [self setTitle:@""];
  [self setTarget:self];
  [self setAction:@selector(tellToggle:)];
  return self;
}

- (BOOL)acceptsFirstMouse:(NSEvent*)event {
  return YES;
}

- (void)mouseDown:(NSEvent*)event {
  const auto alive = quillmont::share(self);
  [super mouseDown:event];
}

- (void)performClick:(id)sender {
  const auto alive = quillmont::share(self);
  [super performClick:sender];
}

- (BOOL)becomeFirstResponder {
  if (![super becomeFirstResponder]) return NO;
  [self scrollRectToVisible:[self bounds]];
  return YES;
}

- (void)tellToggle:(id)sender {
  [[self retain] autorelease];
  const auto told = onToggle;
  if (told) told([self state] == NSControlStateValueOn);
}

@end

namespace quillmont {

CheckboxView::CheckboxView(ViewId id, ViewActions& actions)
    : view_(adopt([[QMCheckboxView alloc] initWithFrame:NSZeroRect])) {
  view_.get()->onToggle = [id, &actions](bool isOn) { actions.toggle(id, isOn); };
}

CheckboxView::~CheckboxView() {
  view_.get()->onToggle = nullptr;
}

void CheckboxView::take(const NativeProperties& properties) {
  const auto& checkbox = contentOf<NativeCheckbox>(properties);
  [view_ setAttributedTitle:attributedTitle(checkbox.title, checkbox.font, checkbox.color)];
  [view_ setState:checkbox.isOn ? NSControlStateValueOn : NSControlStateValueOff];
  [view_ setAlphaValue:properties.opacity];
}

NSSize CheckboxView::sizeOf(QMCheckboxView* checkbox, const std::string& title, const Font& font) {
  [checkbox setAttributedTitle:attributedTitle(title, font, Color::primary)];
  return [checkbox intrinsicContentSize];
}

}  // namespace quillmont
