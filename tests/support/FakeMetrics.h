// A screen whose sizes can be reckoned in the head.
#pragma once

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "platform/view/Metrics.h"

namespace quillmont::testing {

/// ASCII characters are half as wide as the font is large, all others as wide; bold is no wider.
/// Lines are 1.22 times as high, rounded up. Words break at spaces, and anywhere where they must.
class FakeMetrics : public Metrics {
 public:
  double scale() const override { return pixelsPerPoint; }

  Size textSize(const std::string& text, const Font& font, std::optional<double> width,
                std::optional<int> lineLimit) const override {
    ++measured;
    const double lineHeight = std::ceil(1.22 * font.size);
    std::vector<double> lines = brokenLines(text, font, width.value_or(1e9));
    const auto limit = lineLimit ? static_cast<std::size_t>(*lineLimit) : lines.size();
    // What is cut off fills its last line with an ellipsis.
    if (lines.size() > limit) {
      lines.resize(limit);
      if (width) lines.back() = *width;
    }
    const double widest = *std::max_element(lines.begin(), lines.end());
    return {widest, lineHeight * static_cast<double>(lines.size())};
  }

  Size symbolSize(const std::string&, const Font& font) const override {
    return {font.size * 1.25, font.size * 1.25};
  }
  Size switchSize() const override { return {38, 22}; }
  Size checkboxSize(const std::string& title, const Font& font) const override {
    return {20 + widthOf(title, font), std::max(14.0, std::ceil(1.22 * font.size))};
  }
  Size segmentsSize(const std::vector<std::string>& labels) const override {
    double widest = 0;
    for (const auto& label : labels) widest = std::max(widest, widthOf(label, Font::system(12)));
    return {static_cast<double>(labels.size()) * (widest + 20), 24};
  }

  double pixelsPerPoint = 1;
  mutable int measured = 0;  ///< how often a text's size was asked for

 private:
  static double widthOf(const std::string& text, const Font& font) {
    double width = 0;
    for (const char c : text) {
      const auto byte = static_cast<unsigned char>(c);
      if ((byte & 0xC0) != 0x80) width += byte < 0x80 ? font.size / 2 : font.size;
    }
    return width;
  }

  /// The widths of the lines.
  static std::vector<double> brokenLines(const std::string& text, const Font& font, double width) {
    std::vector<double> lines = {0};
    std::string word;
    const auto flush = [&] {
      const double length = widthOf(word, font);
      if (lines.back() > 0 && lines.back() + length > width) lines.push_back(0);
      lines.back() += length;
      while (lines.back() > width && width > 0) {
        lines.push_back(lines.back() - width);
        lines[lines.size() - 2] = width;
      }
      word.clear();
    };
    for (const char c : text) {
      if (c != '\n') word += c;
      if (c == ' ' || c == '\n') flush();
      if (c == '\n') lines.push_back(0);
    }
    flush();
    return lines;
  }
};

}  // namespace quillmont::testing
