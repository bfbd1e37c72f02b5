// How large things are on this system's screen.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/view/Font.h"
#include "platform/view/geometry.h"

namespace quillmont {

/// Lengths in points. Pure functions of their arguments until the host says that its metrics have
/// changed. Main thread.
class Metrics {
 public:
  virtual ~Metrics() = default;

  /// Device pixels per point.
  virtual double scale() const = 0;

  /// The text in lines no wider than `width`, broken between words where that can be, and no more
  /// of them than `lineLimit`. Without a width, nothing is broken but at its own line ends. The
  /// answer is as wide as its widest line, and not wider than `width`.
  virtual Size textSize(const std::string& text, const Font& font, std::optional<double> width,
                        std::optional<int> lineLimit) const = 0;

  virtual Size symbolSize(const std::string& name, const Font& font) const = 0;
  virtual Size switchSize() const = 0;
  virtual Size checkboxSize(const std::string& title, const Font& font) const = 0;
  /// As wide as its labels need.
  virtual Size segmentsSize(const std::vector<std::string>& labels) const = 0;
};

}  // namespace quillmont
