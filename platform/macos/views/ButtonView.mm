#include "platform/macos/views/ButtonView.h"

namespace quillmont {
namespace {

constexpr double kPressedOpacity = 0.7;

}  // namespace

ButtonView::ButtonView(ViewId id, ViewActions& actions)
    : view_(adopt([[QMPressArea alloc] initWithFrame:NSZeroRect])) {
  [view_ setButtonType:NSButtonTypeMomentaryChange];
  [view_ setAccessibilityRole:NSAccessibilityButtonRole];
  view_.get()->onPress = [id, &actions] { actions.press(id); };
  view_.get()->onPressing = [this] { dim(); };
}

ButtonView::~ButtonView() {
  view_.get()->onPress = nullptr;
  view_.get()->onPressing = nullptr;
}

void ButtonView::take(const NativeProperties& properties) {
  opacity_ = properties.opacity;
  dim();
}

void ButtonView::dim() {
  [view_ setAlphaValue:[view_ isPressing] ? opacity_ * kPressedOpacity : opacity_];
}

}  // namespace quillmont
