#include "platform/linux/views/SwitchWidget.h"

#include <QPainter>
#include <QStyle>
#include <algorithm>

#include "platform/linux/views/theme.h"
#include "platform/view/figures.h"

namespace quillmont {
namespace {

constexpr double kRim = 2;  ///< between the knob and the edge
constexpr int kSlideMilliseconds = 140;

QColor mixed(const QColor& from, const QColor& to, double share) {
  const auto part = [share](float a, float b) { return a + (b - a) * static_cast<float>(share); };
  return QColor::fromRgbF(part(from.redF(), to.redF()), part(from.greenF(), to.greenF()),
                          part(from.blueF(), to.blueF()), part(from.alphaF(), to.alphaF()));
}

void drawKnob(QPainter& painter, const QRectF& knob) {
  painter.setBrush(QColor(0, 0, 0, 22));
  painter.drawEllipse(knob.translated(0, 1));
  painter.setBrush(QColor(0, 0, 0, 14));
  painter.drawEllipse(knob.adjusted(-0.5, -0.5, 0.5, 0.5));
  painter.setBrush(Qt::white);
  painter.drawEllipse(knob);
}

}  // namespace

SwitchWidget::SwitchWidget(QWidget* parent, ViewId id, ViewActions& actions) : Control(parent) {
  setCheckable(true);
  setProperty(kFocusRadius, kSwitchSize.height / 2);
  slide_.setEasingCurve(QEasingCurve::InOutQuad);
  connect(&slide_, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
    position_ = value.toDouble();
    update();
  });
  connect(this, &QAbstractButton::clicked, this,
          [id, &actions](bool isOn) { actions.toggle(id, isOn); });
}

void SwitchWidget::take(const NativeProperties& properties) {
  switch_ = contentOf<NativeSwitch>(properties);
  setOpacity(*this, properties.opacity);
  setChecked(switch_.isOn);
  update();
}

/// The program has changed the state.
void SwitchWidget::checkStateSet() {
  slide();
}

/// The user has.
void SwitchWidget::nextCheckState() {
  QAbstractButton::nextCheckState();
  slide();
}

void SwitchWidget::slide() {
  const double end = isChecked() ? 1 : 0;
  if (slide_.state() == QAbstractAnimation::Running && slide_.endValue().toDouble() == end) return;
  slide_.stop();
  const int allowed = style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this);
  if (!isVisible() || allowed <= 0) {
    position_ = end;
    return update();
  }
  slide_.setDuration(std::min(allowed, kSlideMilliseconds));
  slide_.setStartValue(position_);
  slide_.setEndValue(end);
  slide_.start();
}

void SwitchWidget::paintEvent(QPaintEvent*) {
  const QRectF track = bounds();
  const auto off = colorNow(Color::primary.opacity(isDark() ? 0.26 : 0.18));
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(mixed(off, colorNow(switch_.tint), position_));
  painter.drawRoundedRect(track, track.height() / 2, track.height() / 2);
  if (isDown()) {
    painter.setBrush(QColor(0, 0, 0, 24));
    painter.drawRoundedRect(track, track.height() / 2, track.height() / 2);
  }
  const double side = track.height() - 2 * kRim;
  const double way = track.width() - side - 2 * kRim;
  drawKnob(painter, {track.left() + kRim + way * position_, track.top() + kRim, side, side});
}

}  // namespace quillmont
