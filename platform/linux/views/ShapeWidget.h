// A figure on the panel.
#pragma once

#include "platform/linux/views/NativeWidget.h"

namespace quillmont {

/// Larger than its frame by what stroke and shadow need. Only its parent's edges cut them off.
class ShapeWidget : public QWidget, public NativeWidget {
 public:
  explicit ShapeWidget(QWidget* parent) : QWidget(parent) {}

  QWidget* widget() override { return this; }
  void take(const NativeProperties& properties) override;

 protected:
  QMarginsF outset() const override;
  void paintEvent(QPaintEvent* event) override;

 private:
  NativeShape shape_;
};

}  // namespace quillmont
