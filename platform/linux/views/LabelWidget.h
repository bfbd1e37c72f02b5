// A text on the panel.
#pragma once

#include <QLabel>

#include "platform/linux/views/NativeWidget.h"

namespace quillmont {

/// Readers of the screen are told the whole text, however much of it can be seen.
class LabelWidget : public QLabel, public NativeWidget {
 public:
  explicit LabelWidget(QWidget* parent);

  QWidget* widget() override { return this; }
  void take(const NativeProperties& properties) override;

  /// The lines as they are painted.
  std::vector<QString> shownLines() const;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  NativeLabel label_;
};

}  // namespace quillmont
