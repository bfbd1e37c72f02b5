// The sizes of what the views show.
#pragma once

#include <memory>

#include "platform/view/Metrics.h"

namespace quillmont {

class AppKitMount;

/// Texts are measured with the attributes that labels have, controls say themselves how large they
/// are. Main thread, with an NSApplication.
class AppKitMetrics : public Metrics {
 public:
  /// For the screen that the mount's panel is on; without one, for the sharpest screen there is.
  /// The mount must outlive the metrics.
  explicit AppKitMetrics(const AppKitMount* mount = nullptr);
  ~AppKitMetrics() override;
  AppKitMetrics(const AppKitMetrics&) = delete;
  AppKitMetrics& operator=(const AppKitMetrics&) = delete;

  double scale() const override;
  Size textSize(const std::string& text, const Font& font, std::optional<double> width,
                std::optional<int> lineLimit) const override;
  Size symbolSize(const std::string& name, const Font& font) const override;
  Size switchSize() const override;
  Size checkboxSize(const std::string& title, const Font& font) const override;
  Size segmentsSize(const std::vector<std::string>& labels) const override;

 private:
  struct Samples;

  const AppKitMount* const mount_;
  const std::unique_ptr<Samples> samples_;  ///< controls that are asked
};

}  // namespace quillmont
