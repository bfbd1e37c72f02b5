// How large the texts of a panel are, asked once each.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>

#include "platform/view/Font.h"
#include "platform/view/Metrics.h"
#include "platform/view/geometry.h"

namespace quillmont {

/// The sizes of texts, remembered from one layout to the next: most texts of a panel stay the same.
/// What a layout has not asked for is forgotten with the next one.
class TextSizes {
 public:
  /// What the metrics answer to the same question.
  Size size(const std::string& text, const Font& font, std::optional<double> width,
            std::optional<int> lineLimit, const Metrics& metrics);
  Size natural(const std::string& text, const Font& font, const Metrics& metrics) {
    return size(text, font, std::nullopt, std::nullopt, metrics);
  }
  void beginLayout();
  void clear();

 private:
  struct Question {
    std::string text;
    Font font;
    std::optional<double> width;
    std::optional<int> lineLimit;
    bool operator==(const Question&) const = default;
  };
  struct Hash {
    std::size_t operator()(const Question& question) const;
  };
  using Sizes = std::unordered_map<Question, Size, Hash>;

  Sizes current_, previous_;
};

}  // namespace quillmont
