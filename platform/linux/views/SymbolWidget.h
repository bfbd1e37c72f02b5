// A symbol on the panel.
#pragma once

#include "platform/linux/views/NativeWidget.h"

namespace quillmont {

class SymbolWidget : public QWidget, public NativeWidget {
 public:
  explicit SymbolWidget(QWidget* parent) : QWidget(parent) {}

  QWidget* widget() override { return this; }
  void take(const NativeProperties& properties) override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  NativeSymbol symbol_;
};

}  // namespace quillmont
