#include "platform/linux/views/QtMetrics.h"

#include <QFontMetricsF>
#include <QGuiApplication>
#include <algorithm>
#include <cmath>

#include "platform/linux/views/control_sizes.h"
#include "platform/linux/views/symbols.h"
#include "platform/linux/views/text_lines.h"
#include "platform/view/figures.h"

namespace quillmont {

double QtMetrics::scale() const {
  return widget_ ? widget_->devicePixelRatioF() : qGuiApp->devicePixelRatio();
}

Size QtMetrics::textSize(const std::string& text, const Font& font, std::optional<double> width,
                         std::optional<int> lineLimit) const {
  const auto lines = linesOf(QString::fromStdString(text), font, width, lineLimit);
  double widest = 0;
  for (const auto& line : lines) widest = std::max(widest, line.width);
  const double pixels = scale();
  widest = std::ceil(widest * pixels - 0.001) / pixels;
  if (width) widest = std::min(widest, *width);
  return {widest, lineHeight(font) * static_cast<double>(lines.size())};
}

Size QtMetrics::symbolSize(const std::string& name, const Font& font) const {
  const auto extent = symbolExtent(name, font.size);
  return {extent.width(), extent.height()};
}

Size QtMetrics::switchSize() const {
  return kSwitchSize;
}

Size QtMetrics::checkboxSize(const std::string& title, const Font& font) const {
  const auto text = textSize(title, font, std::nullopt, 1);
  if (title.empty()) return {kCheckboxSide, kCheckboxSide};
  return {kCheckboxSide + kCheckboxGap + text.width, std::max(kCheckboxSide, text.height)};
}

Size QtMetrics::segmentsSize(const std::vector<std::string>& labels) const {
  double widest = 0;
  for (const auto& label : labels) {
    for (const auto& font : {kSegmentFont, kSelectedSegmentFont}) {
      widest = std::max(widest, textSize(label, font, std::nullopt, 1).width);
    }
  }
  return {static_cast<double>(labels.size()) * (widest + 2 * kSegmentPadding), kSegmentsHeight};
}

}  // namespace quillmont
