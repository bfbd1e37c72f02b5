// A switch.
#pragma once

#include <QVariantAnimation>

#include "platform/linux/views/Control.h"

namespace quillmont {

class SwitchWidget : public Control<QAbstractButton> {
 public:
  SwitchWidget(QWidget* parent, ViewId id, ViewActions& actions);

  void take(const NativeProperties& properties) override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void checkStateSet() override;
  void nextCheckState() override;

 private:
  void slide();

  NativeSwitch switch_;
  double position_ = 0;  ///< of the knob: 0 is off, 1 is on
  QVariantAnimation slide_;
};

}  // namespace quillmont
