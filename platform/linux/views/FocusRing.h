// The ring around the control that the keyboard is on.
#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

namespace quillmont {

/// Shows the keyboard's place as long as the keyboard is what the user works with, and scrolls it
/// into view. Main thread.
class FocusRing : public QObject {
 public:
  /// For the controls in `root` and in the windows that belong to it.
  explicit FocusRing(QWidget* root);
  ~FocusRing() override;

  /// Views have been moved, or put in front of the ring.
  void follow();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  class Ring;

  void moveTo(QWidget* control);
  void use(bool keyboard);
  bool isOurs(const QWidget* widget) const;

  QPointer<QWidget> root_;
  QPointer<QWidget> control_;
  QPointer<Ring> ring_;
  bool keyboard_ = false;
};

}  // namespace quillmont
