// A part of the panel that scrolls vertically.
#pragma once

#include <QScrollArea>

#include "platform/linux/views/NativeWidget.h"

namespace quillmont {

class OverlayScroller;

/// The offset from the top lasts while the content changes, as far as there is content. The keys
/// that scroll pages are taken from the controls inside.
class ScrollWidget : public QScrollArea, public NativeWidget {
 public:
  explicit ScrollWidget(QWidget* parent);

  QWidget* widget() override { return this; }
  QWidget* childArea() override { return content_; }
  void take(const NativeProperties& properties) override;
  void place(const QRectF& frame) override;
  void addFocusStops(std::vector<QWidget*>&) override {}

  /// Scrolls as far as is needed to see all of `inside`, which is somewhere in the content.
  void reveal(QWidget* inside);

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void arrange();

  QWidget* const content_;
  OverlayScroller* const scroller_;
  Size contentSize_;
};

}  // namespace quillmont
