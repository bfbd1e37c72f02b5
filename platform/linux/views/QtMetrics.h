// The sizes of what the views show.
#pragma once

#include <QPointer>
#include <QWidget>

#include "platform/view/Metrics.h"

namespace quillmont {

/// A point is a logical pixel. Main thread, with a QGuiApplication.
class QtMetrics : public Metrics {
 public:
  /// For the screen that `widget` is on; without one, for the sharpest screen there is.
  explicit QtMetrics(const QWidget* widget = nullptr) : widget_(widget) {}

  double scale() const override;
  Size textSize(const std::string& text, const Font& font, std::optional<double> width,
                std::optional<int> lineLimit) const override;
  Size symbolSize(const std::string& name, const Font& font) const override;
  Size switchSize() const override;
  Size checkboxSize(const std::string& title, const Font& font) const override;
  Size segmentsSize(const std::vector<std::string>& labels) const override;

 private:
  QPointer<const QWidget> widget_;
};

}  // namespace quillmont
