// A checkbox with its title.
#pragma once

#include <QCheckBox>

#include "platform/linux/views/Control.h"

namespace quillmont {

class CheckboxWidget : public Control<QCheckBox> {
 public:
  CheckboxWidget(QWidget* parent, ViewId id, ViewActions& actions);

  void take(const NativeProperties& properties) override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void drawBox(QPainter& painter, const QRectF& box) const;

  NativeCheckbox checkbox_;
};

}  // namespace quillmont
