#include "platform/view/TextSizes.h"

#include <functional>
#include <utility>

namespace quillmont {

std::size_t TextSizes::Hash::operator()(const Question& question) const {
  std::size_t hash = std::hash<std::string>()(question.text);
  const auto mix = [&hash](double number) { hash = hash * 31 + std::hash<double>()(number); };
  mix(question.font.size);
  mix(static_cast<double>(question.font.weight));
  mix(question.width.value_or(-1));
  mix(question.lineLimit.value_or(-1));
  return hash;
}

Size TextSizes::size(const std::string& text, const Font& font, std::optional<double> width,
                     std::optional<int> lineLimit, const Metrics& metrics) {
  Question question{text, font, width, lineLimit};
  if (const auto found = current_.find(question); found != current_.end()) return found->second;
  const auto before = previous_.find(question);
  const Size size =
      before != previous_.end() ? before->second : metrics.textSize(text, font, width, lineLimit);
  current_.emplace(std::move(question), size);
  return size;
}

void TextSizes::beginLayout() {
  previous_ = std::move(current_);
  current_.clear();
}

void TextSizes::clear() {
  previous_.clear();
  current_.clear();
}

}  // namespace quillmont
