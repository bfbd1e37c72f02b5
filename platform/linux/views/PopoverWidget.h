// A popover that hangs from a view of the panel.
#pragma once

#include <QPointer>

#include "platform/linux/views/NativeWidget.h"
#include "platform/view/ViewActions.h"

namespace quillmont {

class ArrowWindow;

/// Open from present() until it is deleted or the panel is hidden. Asks to be dismissed on Escape,
/// and when the mouse is pressed in this program outside of it, but not on its anchor, which has
/// its own way of closing it.
class PopoverWidget : public QObject, public NativeWidget {
 public:
  /// `anchor` is its parent view, on the panel `root`. Both outlive it.
  PopoverWidget(NativeWidget& anchor, QWidget* root, ViewId id, ViewActions& actions);
  ~PopoverWidget() override;

  /// Its window.
  QWidget* widget() override;
  QWidget* childArea() override { return content_; }
  QPointF childOrigin() const override { return {}; }
  void take(const NativeProperties& properties) override;
  void place(const QRectF& frame) override;
  void addFocusStops(std::vector<QWidget*>&) override {}

  /// Opens it, or brings it to where its anchor is now. Does nothing while the panel is hidden.
  void present();
  void close();
  void appearanceDidChange();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QRect anchorOnScreen() const;
  bool isElsewhere(const QWidget& pressed, QPoint position) const;

  NativeWidget& anchor_;
  QWidget* const root_;
  const ViewId id_;
  ViewActions& actions_;
  QPointer<ArrowWindow> window_;
  QWidget* const content_;
  RectEdge edge_ = RectEdge::maxY;
  QRect shownAt_;
  bool closed_ = false;
};

}  // namespace quillmont
