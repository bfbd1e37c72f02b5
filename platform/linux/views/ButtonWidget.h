// A button without looks of its own.
#pragma once

#include "platform/linux/views/Control.h"

namespace quillmont {

/// Its children are its label.
class ButtonWidget : public Control<QAbstractButton> {
 public:
  ButtonWidget(QWidget* parent, ViewId id, ViewActions& actions);

  void take(const NativeProperties& properties) override;

 protected:
  void paintEvent(QPaintEvent*) override {}
  void letGo() override;

 private:
  void dim();

  double opacity_ = 1;
};

}  // namespace quillmont
