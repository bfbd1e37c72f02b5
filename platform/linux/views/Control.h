// What the buttons of all kinds have in common.
#pragma once

#include <QAbstractButton>
#include <QEvent>
#include <QKeyEvent>

#include "platform/linux/views/NativeWidget.h"
#include "platform/view/ViewActions.h"

namespace quillmont {

/// How round the ring is that shows the keyboard's place: a property of the widget.
inline constexpr const char* kFocusRadius = "focusRadius";

/// `Button` is a kind of QAbstractButton. The mouse does not move the keyboard's
/// place, but for segments.
template <class Button>
class PlainControl : public Button {
 public:
  explicit PlainControl(QWidget* parent) : Button(parent) { this->setFocusPolicy(Qt::TabFocus); }

 protected:
  bool hitButton(const QPoint& position) const override { return this->rect().contains(position); }

  /// Escape belongs to the window, even while Space is held down.
  void keyPressEvent(QKeyEvent* event) override {
    if (event->key() != Qt::Key_Escape) return Button::keyPressEvent(event);
    letGo();
    event->ignore();
  }

  /// The button will not be there for the release.
  void hideEvent(QHideEvent* event) override {
    letGo();
    Button::hideEvent(event);
  }

  virtual void letGo() { this->setDown(false); }
};

template <class Button>
class Control : public PlainControl<Button>, public NativeWidget {
 public:
  using PlainControl<Button>::PlainControl;
  QWidget* widget() override { return this; }
};

}  // namespace quillmont
