#include "platform/view/native_properties.h"

#include <variant>

namespace quillmont {
namespace {

template <class... Contents>
bool isOneOf(const NativeProperties& properties) {
  return (std::holds_alternative<Contents>(properties.content) || ...);
}

}  // namespace

bool sameKind(const NativeProperties& left, const NativeProperties& right) {
  return left.content.index() == right.content.index();
}

bool isFigure(const NativeProperties& properties) {
  return isOneOf<NativeLabel, NativeSymbol, NativeShape>(properties);
}

bool isControl(const NativeProperties& properties) {
  return isOneOf<NativeButton, NativeSwitch, NativeCheckbox, NativeSegments>(properties);
}

std::string ownText(const NativeProperties& properties) {
  const auto& content = properties.content;
  if (const auto* const label = std::get_if<NativeLabel>(&content)) return label->text;
  if (const auto* const checkbox = std::get_if<NativeCheckbox>(&content)) return checkbox->title;
  return {};
}

bool letsMouseThrough(const NativeProperties& properties, bool inButton) {
  if (properties.tracksHover || !properties.help.empty()) return false;
  return isFigure(properties) || (inButton && isOneOf<NativeGroup>(properties));
}

}  // namespace quillmont
