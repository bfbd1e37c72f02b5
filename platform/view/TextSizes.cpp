#include "platform/view/TextSizes.h"

#include <functional>
#include <utility>

namespace quillmont {

std::size_t TextSizes::Hash::operator()(const Question& question) const {
  std::size_t hash = std::hash<std::string>()(question.text);
  const auto mix = [&hash](double number) { hash = hash * 31 + std::hash<double>()(number); };
  mix(question.font.size);
  if (question.width) mix(*question.width);
  return hash;
}

Size TextSizes::size(const std::string& text, const Font& font, std::optional<double> width,
                     std::optional<int> lineLimit, const Metrics& metrics) {
  const auto [found, isNew] = current_.try_emplace(Question{text, font, width, lineLimit});
  if (!isNew) return found->second;
  const auto before = previous_.find(found->first);
  found->second =
      before != previous_.end() ? before->second : metrics.textSize(text, font, width, lineLimit);
  return found->second;
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
