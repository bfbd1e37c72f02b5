// How large a leaf is: a text, a symbol, a figure, a control.

#include <algorithm>
#include <cmath>

#include "platform/view/Layouter.h"

namespace quillmont {

Size Layouter::measure(const LeafElement& leaf, const Element& element, const ProposedSize& offer) {
  return std::visit([&](const auto& content) { return leafSize(content, element, offer); },
                    leaf.content);
}

Size Layouter::leafSize(const NativeLabel& label, const Element& element,
                        const ProposedSize& offer) {
  auto& natural = element.textSize;
  if (!natural) natural = texts_.natural(label.text, label.font, metrics_);
  Size size = *natural;
  const bool tooWide = offer.width && *offer.width < size.width;
  // Asked only for how narrow it can be; nobody sees a text of no width.
  if (tooWide && *offer.width <= 0) return {0, size.height};
  if (tooWide || (label.lineLimit && !isOneLine(label, size))) {
    size = texts_.size(label.text, label.font, tooWide ? offer.width : std::nullopt,
                       label.lineLimit, metrics_);
  }
  if (offer.height && *offer.height < size.height && !isOneLine(label, size)) {
    size = inLessHeight(label, offer, size);
  }
  // What a font answers is not exact to the last bit; that must not cost a pixel.
  constexpr double kInexact = 1.0 / 256;
  return {std::ceil(size.width * scale_ - kInexact) / scale_, size.height};
}

/// A line with letters of another font may be higher than one without.
bool Layouter::isOneLine(const NativeLabel& label, Size size) {
  return size.height < 2 * texts_.natural("x", label.font, metrics_).height;
}

Size Layouter::inLessHeight(const NativeLabel& label, const ProposedSize& offer, Size size) {
  const double line = texts_.natural("x", label.font, metrics_).height;
  const int lines = std::max(1, static_cast<int>(*offer.height / line));
  if (label.lineLimit && *label.lineLimit <= lines) return size;
  const auto width = offer.width && *offer.width > 0 ? offer.width : std::nullopt;
  return texts_.size(label.text, label.font, width, lines, metrics_);
}

Size Layouter::leafSize(const NativeSymbol& symbol, const Element&, const ProposedSize&) {
  return metrics_.symbolSize(symbol.name, symbol.font);
}

Size Layouter::leafSize(const NativeShape& shape, const Element&, const ProposedSize& offer) {
  const Size size{within(offer.width, kShapeLength), within(offer.height, kShapeLength)};
  if (shape.kind != NativeShape::Kind::circle) return size;
  const double diameter = std::min(size.width, size.height);
  return {diameter, diameter};
}

Size Layouter::leafSize(const NativeSwitch&, const Element&, const ProposedSize&) {
  return metrics_.switchSize();
}

Size Layouter::leafSize(const NativeCheckbox& checkbox, const Element&, const ProposedSize&) {
  return metrics_.checkboxSize(checkbox.title, checkbox.font);
}

Size Layouter::leafSize(const NativeSegments& segments, const Element&, const ProposedSize&) {
  return metrics_.segmentsSize(segments.labels);
}

/// One that changes its text once a second mostly stays as wide: then its neighbours need not be
/// asked again.
bool Layouter::answersAsBefore(const LeafElement& leaf, const Element& element) {
  element.textSize.reset();
  return std::all_of(element.sizes.begin(), element.sizes.end(), [&](const auto& remembered) {
    return measure(leaf, element, remembered.first) == remembered.second;
  });
}

}  // namespace quillmont
