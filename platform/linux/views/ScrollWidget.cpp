#include "platform/linux/views/ScrollWidget.h"

#include <QKeyEvent>
#include <QScrollBar>
#include <algorithm>
#include <cmath>

#include "platform/linux/views/OverlayScroller.h"

namespace quillmont {
namespace {

constexpr int kStep = 16;    ///< a third of what one notch of the wheel scrolls
constexpr int kMargin = 12;  ///< kept around what is revealed

}  // namespace

ScrollWidget::ScrollWidget(QWidget* parent)
    : QScrollArea(parent),
      content_(new QWidget),
      scroller_(new OverlayScroller(this, *verticalScrollBar())) {
  setFrameShape(QFrame::NoFrame);
  setFocusPolicy(Qt::NoFocus);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  verticalScrollBar()->setSingleStep(kStep);
  setWidget(content_);
  // The area has filled both with the desktop's own colour.
  viewport()->setAutoFillBackground(false);
  content_->setAutoFillBackground(false);
  scroller_->raise();
}

void ScrollWidget::take(const NativeProperties& properties) {
  contentSize_ = contentOf<NativeScroll>(properties).contentSize;
  setOpacity(*this, properties.opacity);
  arrange();
}

void ScrollWidget::place(const QRectF& frame) {
  NativeWidget::place(frame);
  scroller_->place(rect());
  arrange();
}

void ScrollWidget::arrange() {
  const auto origin = childOrigin();
  const int width = wholeUp(contentSize_.width + origin.x());
  const int height = wholeUp(contentSize_.height + origin.y());
  content_->resize(std::max(width, size().width()), height);
}

void ScrollWidget::reveal(QWidget* inside) {
  ensureWidgetVisible(inside, 0, kMargin);
}

void ScrollWidget::keyPressEvent(QKeyEvent* event) {
  auto& bar = *verticalScrollBar();
  switch (event->key()) {
    case Qt::Key_PageUp:
      return bar.triggerAction(QScrollBar::SliderPageStepSub);
    case Qt::Key_PageDown:
      return bar.triggerAction(QScrollBar::SliderPageStepAdd);
    case Qt::Key_Home:
      return bar.triggerAction(QScrollBar::SliderToMinimum);
    case Qt::Key_End:
      return bar.triggerAction(QScrollBar::SliderToMaximum);
    default:
      event->ignore();
  }
}

}  // namespace quillmont
