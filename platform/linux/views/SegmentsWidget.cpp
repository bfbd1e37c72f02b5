#include "platform/linux/views/SegmentsWidget.h"

#include <QPainter>
#include <cmath>
#include <functional>

#include "platform/linux/views/Control.h"
#include "platform/linux/views/control_sizes.h"
#include "platform/linux/views/text_lines.h"
#include "platform/linux/views/theme.h"

namespace quillmont {
namespace {

constexpr double kTrackRadius = 6;
constexpr double kPillRadius = 5;  ///< of the selected segment
constexpr double kRim = 2;         ///< between the selected segment and the edge

}  // namespace

/// To readers of the screen a radio button, as it is checkable and exclusive.
class SegmentsWidget::Segment : public PlainControl<QAbstractButton> {
 public:
  explicit Segment(QWidget* parent) : PlainControl(parent) {
    setCheckable(true);
    setAutoExclusive(true);
    setProperty(kFocusRadius, kTrackRadius);
  }

  void setLabel(const QString& label) {
    label_ = label;
    setAccessibleName(label);
    update();
  }

  /// Unlike with setChecked(), none of an exclusive group may be left.
  void setSelected(bool selected) {
    setAutoExclusive(false);
    setChecked(selected);
    setAutoExclusive(true);
  }

  std::function<void(int step)> onArrow;
  std::function<void()> onFocus;

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    switch (event->key()) {
      case Qt::Key_Left:
      case Qt::Key_Up:
        return onArrow(-1);
      case Qt::Key_Right:
      case Qt::Key_Down:
        return onArrow(1);
      default:
        PlainControl::keyPressEvent(event);
    }
  }

  void focusInEvent(QFocusEvent* event) override {
    PlainControl::focusInEvent(event);
    onFocus();
  }

  void focusOutEvent(QFocusEvent* event) override {
    PlainControl::focusOutEvent(event);
    onFocus();
  }

  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto pill = QRectF(rect()).adjusted(kRim, kRim, -kRim, -kRim);
    if (isChecked() || isDown()) {
      painter.setPen(Qt::NoPen);
      painter.setBrush(isChecked() ? colorNow(Color::cyan) : colorNow(Color::primary.opacity(0.1)));
      painter.drawRoundedRect(pill, kPillRadius, kPillRadius);
    }
    const auto font = isChecked() ? kSelectedSegmentFont : kSegmentFont;
    const auto line = linesOf(label_, font, width(), 1).front();
    painter.setFont(fontFor(font));
    // White could not be read on cyan.
    painter.setPen(isChecked() ? colorIn(Color::primary, false) : colorNow(Color::primary));
    const double x = std::floor((width() - line.width) / 2 + 0.5);
    const double y = std::floor((height() - lineHeight(font)) / 2 + 0.5) + baseline(font);
    painter.drawText(QPointF(x, y), line.text);
  }

 private:
  QString label_;
};

SegmentsWidget::SegmentsWidget(QWidget* parent, ViewId id, ViewActions& actions)
    : QWidget(parent), id_(id), actions_(actions) {}

void SegmentsWidget::take(const NativeProperties& properties) {
  const auto& content = contentOf<NativeSegments>(properties);
  setOpacity(*this, properties.opacity);
  makeSegments(content.labels.size());
  for (std::size_t i = 0; i < segments_.size(); ++i) {
    segments_[i]->setLabel(QString::fromStdString(content.labels[i]));
  }
  arrange();
  setSelected(content.selected);
}

void SegmentsWidget::place(const QRectF& frame) {
  NativeWidget::place(frame);
  arrange();
}

void SegmentsWidget::addFocusStops(std::vector<QWidget*>& stops) {
  for (auto* const segment : segments_) stops.push_back(segment);
}

void SegmentsWidget::makeSegments(std::size_t count) {
  while (segments_.size() > count) {
    segments_.back()->hide();
    segments_.back()->deleteLater();
    segments_.pop_back();
  }
  while (segments_.size() < count) {
    const auto index = segments_.size();
    auto* const segment = new Segment(this);
    segment->onArrow = [this, index](int step) { moveFocus(index, step); };
    segment->onFocus = [this] { chooseTabStop(); };
    connect(segment, &QAbstractButton::clicked, this, [this, index] { chosen(index); });
    segment->show();
    segments_.push_back(segment);
  }
}

void SegmentsWidget::arrange() {
  const auto count = static_cast<double>(segments_.size());
  const auto edge = [&](std::size_t index) {
    const double x = bounds().left() + bounds().width() * static_cast<double>(index) / count;
    return static_cast<int>(std::lround(x));
  };
  for (std::size_t i = 0; i < segments_.size(); ++i) {
    segments_[i]->setGeometry(edge(i), 0, edge(i + 1) - edge(i), height());
  }
}

void SegmentsWidget::setSelected(std::optional<std::size_t> selected) {
  selected_ = selected;
  for (std::size_t i = 0; i < segments_.size(); ++i) segments_[i]->setSelected(i == selected);
  chooseTabStop();
  update();
}

void SegmentsWidget::chosen(std::size_t index) {
  if (selected_ == index) return;
  setSelected(index);
  actions_.select(id_, index);
}

void SegmentsWidget::moveFocus(std::size_t from, int step) {
  const auto next = static_cast<std::ptrdiff_t>(from) + step;
  if (next < 0 || next >= std::ssize(segments_)) return;
  segments_[static_cast<std::size_t>(next)]->setFocus(Qt::TabFocusReason);
}

/// The segment that has the keyboard, else the selected one, else the first. The others stay
/// focusable, for the arrow keys and for readers of the screen; so a click takes the keyboard
/// along.
void SegmentsWidget::chooseTabStop() {
  std::size_t stop = selected_.value_or(0);
  for (std::size_t i = 0; i < segments_.size(); ++i) {
    if (segments_[i]->hasFocus()) stop = i;
  }
  for (std::size_t i = 0; i < segments_.size(); ++i) {
    segments_[i]->setFocusPolicy(i == stop ? Qt::TabFocus : Qt::ClickFocus);
  }
}

void SegmentsWidget::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(colorNow(Color::primary.opacity(isDark() ? 0.12 : 0.08)));
  painter.drawRoundedRect(bounds(), kTrackRadius, kTrackRadius);
  painter.setRenderHint(QPainter::Antialiasing, false);
  for (std::size_t i = 1; i < segments_.size(); ++i) {
    if (selected_ && (i == *selected_ || i == *selected_ + 1)) continue;
    constexpr int kInset = 6;
    painter.fillRect(segments_[i]->x(), kInset, 1, height() - 2 * kInset,
                     colorNow(Color::separator));
  }
}

}  // namespace quillmont
