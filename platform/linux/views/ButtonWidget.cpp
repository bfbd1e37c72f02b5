#include "platform/linux/views/ButtonWidget.h"

namespace quillmont {
namespace {

constexpr double kPressedOpacity = 0.7;

}  // namespace

ButtonWidget::ButtonWidget(QWidget* parent, ViewId id, ViewActions& actions) : Control(parent) {
  connect(this, &QAbstractButton::pressed, this, [this] { dim(); });
  connect(this, &QAbstractButton::released, this, [this] { dim(); });
  connect(this, &QAbstractButton::clicked, this, [id, &actions] { actions.press(id); });
}

void ButtonWidget::take(const NativeProperties& properties) {
  opacity_ = properties.opacity;
  dim();
}

void ButtonWidget::letGo() {
  Control::letGo();
  dim();
}

void ButtonWidget::dim() {
  setOpacity(*this, isDown() ? opacity_ * kPressedOpacity : opacity_);
}

}  // namespace quillmont
