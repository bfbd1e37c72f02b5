// A small window that hangs from something on the screen by an arrow.
#pragma once

#include <QColor>
#include <QPixmap>
#include <QRect>
#include <QWidget>
#include <functional>
#include <optional>

#include "platform/Popover.h"
#include "platform/linux/desktop/arrow_placement.h"

namespace quillmont {

/// Main thread. Lengths are logical pixels, positions global. It stays open until its user hides
/// it, and leaves Escape to onCloseRequest.
class ArrowWindow : public QWidget {
 public:
  /// `owner` is a widget whose window this one belongs to and stays in front of; null for a window
  /// of its own. It is not hidden together with its owner.
  explicit ArrowWindow(QWidget* owner = nullptr);

  /// What it holds, and owns; called once. The window is laid around it in the size that it has,
  /// and follows its resizing without leaving the anchor.
  void setContent(QWidget* content);

  /// The colour behind the content and of the arrow.
  void setBackground(const QColor& color);

  /// Shows it, in front and with the keyboard, outside `edge` of `anchor`, or at another edge where
  /// there is no room. One that is shown moves. Edges are those of a y axis that points up.
  void showAt(const QRect& anchor, RectEdge edge);

  /// Shows it without an arrow where the desktop keeps its status bar: for an unknown anchor.
  void showInCorner();

  /// The user wants it closed: Escape, or the window manager's own ways; or, where the system does
  /// not tell of clicks elsewhere, another program has been turned to.
  std::function<void()> onCloseRequest = [] {};

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  class Corners;

  void present();
  void arrange();
  void applyShape();
  QRect bodyInWindow() const;
  const QPixmap& chrome();
  void paintChrome(QPixmap& target) const;
  void closeWhenProgramIsLeft();

  QWidget* content_ = nullptr;
  Corners* corners_;
  QColor background_ = Qt::white;
  std::optional<QRect> anchor_;
  RectEdge preferredEdge_ = RectEdge::minY;
  ArrowPlacement placement_;
  bool composited_ = true;
  QPixmap chrome_;  ///< shadow, background and outline; null until it is needed
};

}  // namespace quillmont
