// A thin scroll bar that lies over what it scrolls.
#pragma once

#include <QScrollBar>
#include <QTimer>
#include <QWidget>
#include <optional>

namespace quillmont {

/// Shows while its area is scrolled or the pointer is on it, and can be dragged. Main thread.
class OverlayScroller : public QWidget {
 public:
  /// Moves with `bar`, which must outlive it.
  OverlayScroller(QWidget* parent, QScrollBar& bar);

  /// Takes the right edge of `area`.
  void place(const QRect& area);

 protected:
  bool event(QEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  void appear();
  QRectF thumb() const;

  QScrollBar& bar_;
  QTimer rest_;                 ///< runs from the last movement until it disappears
  bool active_ = false;         ///< it can be seen
  std::optional<double> grip_;  ///< where the pointer holds the thumb, from its top
};

}  // namespace quillmont
