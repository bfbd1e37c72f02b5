#include "ui/MenuButtonStyle.h"

namespace quillmont {

View MenuButtonStyle::makeBody(const ButtonConfiguration& configuration) const {
  return configuration.label
      .foregroundColor(configuration.role == ButtonRole::destructive ? Color::red : Color::primary)
      .background(isHovered_.get() ? Color::primary.opacity(0.08) : Color::clear)
      .onHover([isHovered = isHovered_](bool isInside) { isHovered.set(isInside); });
}

}  // namespace quillmont
