#include "platform/linux/views/CheckboxWidget.h"

#include <QPainter>
#include <QPainterPath>
#include <cmath>

#include "platform/linux/views/control_sizes.h"
#include "platform/linux/views/text_lines.h"
#include "platform/linux/views/theme.h"

namespace quillmont {
namespace {

void drawTick(QPainter& painter, const QRectF& box) {
  const auto at = [&](double x, double y) {
    return box.topLeft() + QPointF(x * box.width(), y * box.height());
  };
  QPainterPath tick(at(0.24, 0.53));
  tick.lineTo(at(0.43, 0.72));
  tick.lineTo(at(0.77, 0.29));
  painter.strokePath(
      tick, QPen(colorIn(Color::white, false), 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
}

}  // namespace

CheckboxWidget::CheckboxWidget(QWidget* parent, ViewId id, ViewActions& actions) : Control(parent) {
  connect(this, &QAbstractButton::clicked, this,
          [id, &actions](bool isOn) { actions.toggle(id, isOn); });
}

void CheckboxWidget::take(const NativeProperties& properties) {
  checkbox_ = contentOf<NativeCheckbox>(properties);
  setOpacity(*this, properties.opacity);
  // An ampersand would name a key.
  setText(QString::fromStdString(checkbox_.title).replace('&', QLatin1String("&&")));
  setChecked(checkbox_.isOn);
  update();
}

void CheckboxWidget::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const double unused = bounds().height() - kCheckboxSide;
  drawBox(painter, {bounds().left(), bounds().top() + std::floor(unused / 2 + 0.5), kCheckboxSide,
                    kCheckboxSide});

  const double left = kCheckboxSide + kCheckboxGap;
  const auto lines = linesOf(QString::fromStdString(checkbox_.title), checkbox_.font,
                             bounds().width() - left + 0.25, 1);
  painter.setFont(fontFor(checkbox_.font));
  painter.setPen(colorNow(checkbox_.color));
  const double spare = bounds().height() - lineHeight(checkbox_.font);
  painter.drawText(
      bounds().topLeft() + QPointF(left, std::floor(spare / 2 + 0.5) + baseline(checkbox_.font)),
      lines.front().text);
}

void CheckboxWidget::drawBox(QPainter& painter, const QRectF& box) const {
  constexpr double kRadius = 3.5;
  painter.setPen(Qt::NoPen);
  if (isChecked()) {
    painter.setBrush(colorNow(Color::cyan));
    painter.drawRoundedRect(box, kRadius, kRadius);
    drawTick(painter, box);
  } else {
    painter.setBrush(colorNow(Color::controlBackground));
    painter.drawRoundedRect(box, kRadius, kRadius);
    painter.setPen(QPen(colorNow(Color::primary.opacity(0.3)), 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(box.adjusted(0.5, 0.5, -0.5, -0.5), kRadius - 0.5, kRadius - 0.5);
  }
  if (!isDown()) return;
  painter.setPen(Qt::NoPen);
  painter.setBrush(colorNow(Color::primary.opacity(0.12)));
  painter.drawRoundedRect(box, kRadius, kRadius);
}

}  // namespace quillmont
