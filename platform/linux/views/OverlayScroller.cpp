#include "platform/linux/views/OverlayScroller.h"

#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <chrono>
#include <cmath>

#include "platform/linux/views/theme.h"

namespace quillmont {
namespace {

constexpr int kWidth = 11;  ///< of what takes the pointer
constexpr double kThumbWidth = 5;
constexpr double kWideThumb = 7;  ///< under the pointer
constexpr double kShortest = 24;
constexpr double kEnds = 3;
constexpr std::chrono::milliseconds kShowTime{900};

}  // namespace

OverlayScroller::OverlayScroller(QWidget* parent, QScrollBar& bar) : QWidget(parent), bar_(bar) {
  rest_.setSingleShot(true);
  rest_.setInterval(kShowTime);
  connect(&rest_, &QTimer::timeout, this, [this] {
    if (underMouse() || grip_) return;
    active_ = false;
    update();
  });
  connect(&bar, &QScrollBar::valueChanged, this, [this] { appear(); });
  connect(&bar, &QScrollBar::rangeChanged, this, [this](int low, int high) {
    setVisible(high > low);
    update();
  });
  setVisible(bar.maximum() > bar.minimum());
}

void OverlayScroller::place(const QRect& area) {
  setGeometry(area.right() + 1 - kWidth, area.top(), kWidth, area.height());
}

bool OverlayScroller::event(QEvent* event) {
  if (event->type() == QEvent::Enter || event->type() == QEvent::Leave) appear();
  return QWidget::event(event);
}

void OverlayScroller::appear() {
  active_ = true;
  rest_.start();
  update();
}

QRectF OverlayScroller::thumb() const {
  const double way = height() - 2 * kEnds;
  const double whole = bar_.maximum() - bar_.minimum() + bar_.pageStep();
  const double length =
      std::clamp(way * bar_.pageStep() / std::max(1.0, whole), std::min(kShortest, way), way);
  const double range = std::max(1, bar_.maximum() - bar_.minimum());
  const double top = kEnds + (way - length) * (bar_.value() - bar_.minimum()) / range;
  const double thickness = underMouse() || grip_ ? kWideThumb : kThumbWidth;
  return {width() - 2 - thickness, top, thickness, length};
}

void OverlayScroller::paintEvent(QPaintEvent*) {
  if (!active_) return;
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(colorNow(Color::primary.opacity(grip_ ? 0.6 : 0.4)));
  const auto rect = thumb();
  painter.drawRoundedRect(rect, rect.width() / 2, rect.width() / 2);
}

void OverlayScroller::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return event->ignore();
  const auto rect = thumb();
  const double y = event->position().y();
  if (y < rect.top() || y > rect.bottom()) {
    bar_.triggerAction(y < rect.top() ? QScrollBar::SliderPageStepSub
                                      : QScrollBar::SliderPageStepAdd);
  } else {
    grip_ = y - rect.top();
  }
  appear();
}

void OverlayScroller::mouseMoveEvent(QMouseEvent* event) {
  if (!grip_) return;
  const double way = height() - 2 * kEnds - thumb().height();
  if (way <= 0) return;
  const double share = (event->position().y() - *grip_ - kEnds) / way;
  bar_.setValue(bar_.minimum() +
                static_cast<int>(std::lround(share * (bar_.maximum() - bar_.minimum()))));
}

/// The release goes elsewhere.
void OverlayScroller::hideEvent(QHideEvent*) {
  grip_.reset();
  active_ = false;
}

void OverlayScroller::mouseReleaseEvent(QMouseEvent*) {
  grip_.reset();
  appear();
}

}  // namespace quillmont
