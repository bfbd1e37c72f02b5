// A view that holds others and draws nothing.
#pragma once

#include "platform/linux/views/NativeWidget.h"

namespace quillmont {

class GroupWidget : public QWidget, public NativeWidget {
 public:
  explicit GroupWidget(QWidget* parent) : QWidget(parent) {}

  QWidget* widget() override { return this; }
  void take(const NativeProperties& properties) override { setOpacity(*this, properties.opacity); }
};

}  // namespace quillmont
