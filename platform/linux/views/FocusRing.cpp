#include "platform/linux/views/FocusRing.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <algorithm>

#include "platform/linux/views/Control.h"
#include "platform/linux/views/ScrollWidget.h"
#include "platform/linux/views/theme.h"

namespace quillmont {
namespace {

constexpr int kWidth = 3;
constexpr double kDefaultRadius = 6;

ScrollWidget* scrollAround(const QWidget* widget) {
  for (auto* parent = widget->parentWidget(); parent && !parent->isWindow();
       parent = parent->parentWidget()) {
    if (auto* const scroll = dynamic_cast<ScrollWidget*>(parent)) return scroll;
  }
  return nullptr;
}

/// What the ring can be in without being cut off: what scrolls with the control, else the window.
QWidget* ringPlaceOf(const QWidget* control) {
  auto* const scroll = scrollAround(control);
  return scroll ? scroll->childArea() : control->window();
}

/// The view in its parent, below all others, that holds the control: the ring stays within, since
/// a window has nothing around it but its shadow.
QRect roomFor(const QWidget& control, const QWidget& place) {
  if (!place.isWindow()) return place.rect();
  const auto* top = &control;
  while (top->parentWidget() != &place) top = top->parentWidget();
  return top == &control ? place.rect() : top->geometry();
}

/// Goes from control to control, or works one.
bool worksOnControls(const QKeyEvent& event) {
  switch (event.key()) {
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
    case Qt::Key_Space:
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
      return true;
    default:
      return false;
  }
}

}  // namespace

class FocusRing::Ring : public QWidget {
 public:
  explicit Ring(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
  }

  void surround(const QWidget& control) {
    const QRect inside(control.mapTo(parentWidget(), QPoint()), control.size());
    const auto radius = control.property(kFocusRadius);
    radius_ = radius.isValid() ? radius.toDouble() : kDefaultRadius;
    setGeometry(inside.adjusted(-kWidth, -kWidth, kWidth, kWidth) &
                roomFor(control, *parentWidget()));
    show();
    raise();
    update();
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(colorNow(Color::cyan.opacity(0.65)), kWidth));
    constexpr double kHalf = kWidth / 2.0;
    painter.drawRoundedRect(QRectF(rect()).adjusted(kHalf, kHalf, -kHalf, -kHalf), radius_ + kHalf,
                            radius_ + kHalf);
  }

 private:
  double radius_ = kDefaultRadius;
};

FocusRing::FocusRing(QWidget* root) : root_(root) {
  qApp->installEventFilter(this);
}

FocusRing::~FocusRing() {
  delete ring_;
}

void FocusRing::follow() {
  if (!keyboard_ || !control_ || !control_->isVisible() || !control_->hasFocus()) {
    if (ring_) ring_->hide();
    return;
  }
  auto* const place = ringPlaceOf(control_);
  if (!ring_) ring_ = new Ring(place);
  if (ring_->parentWidget() != place) ring_->setParent(place);
  ring_->surround(*control_);
}

bool FocusRing::eventFilter(QObject* watched, QEvent* event) {
  switch (event->type()) {
    case QEvent::KeyPress:
      if (worksOnControls(*static_cast<QKeyEvent*>(event))) use(true);
      break;
    case QEvent::MouseButtonPress:
      use(false);
      break;
    case QEvent::FocusIn:
      if (watched->isWidgetType()) moveTo(static_cast<QWidget*>(watched));
      break;
    case QEvent::FocusOut:
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::Hide:
      // The event has not been seen by the control itself yet.
      if (watched == control_)
        QMetaObject::invokeMethod(
            this, [this] { follow(); }, Qt::QueuedConnection);
      break;
    default:
      break;
  }
  return false;
}

void FocusRing::moveTo(QWidget* control) {
  if (!isOurs(control)) return;
  control_ = control;
  if (!keyboard_) return;
  if (auto* const scroll = scrollAround(control)) scroll->reveal(control);
  QMetaObject::invokeMethod(
      this, [this] { follow(); }, Qt::QueuedConnection);
}

void FocusRing::use(bool keyboard) {
  if (keyboard_ == keyboard) return;
  keyboard_ = keyboard;
  follow();
}

/// In the panel, or in a popover that belongs to it: those are its children, too.
bool FocusRing::isOurs(const QWidget* widget) const {
  for (const QObject* object = widget; object; object = object->parent()) {
    if (object == root_) return widget != root_;
  }
  return false;
}

}  // namespace quillmont
