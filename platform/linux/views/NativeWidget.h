// What every native view is beside a widget of Qt's. Main thread.
#pragma once

#include <QMarginsF>
#include <QPointF>
#include <QRectF>
#include <QWidget>
#include <vector>

#include "platform/view/NativeView.h"

namespace quillmont {

/// Frames begin and end at device pixels, widgets at logical ones: a widget is as large as its
/// frame needs, and knows where in it the frame is. It belongs to its parent widget.
class NativeWidget {
 public:
  virtual ~NativeWidget() = default;

  virtual QWidget* widget() = 0;

  /// Takes over what `properties` say of this kind of view. Nothing is told to anybody.
  virtual void take(const NativeProperties& properties) = 0;

  /// The widget in which its children are.
  virtual QWidget* childArea() { return widget(); }
  /// Where the children's coordinates begin in it.
  virtual QPointF childOrigin() const { return bounds_.topLeft(); }

  /// Puts it at `frame`, in the coordinates of its parent's child area.
  virtual void place(const QRectF& frame);

  /// What the keyboard can be on, in its order.
  virtual void addFocusStops(std::vector<QWidget*>& stops);

  /// The frame in the widget's own coordinates.
  const QRectF& bounds() const { return bounds_; }

 protected:
  /// How far it paints beyond its frame. Whoever answers something else now calls placeAgain().
  virtual QMarginsF outset() const { return {}; }
  void placeAgain() { place(frame_); }

 private:
  QRectF frame_;
  QRectF bounds_;
};

/// The kind of content that a view was made for.
template <class Content>
const Content& contentOf(const NativeProperties& properties) {
  return std::get<Content>(properties.content);
}

/// Up to whole logical pixels, but for what calculating has added.
int wholeUp(double length);

/// A widget and all in it, as opaque as that.
void setOpacity(QWidget& widget, double opacity);

}  // namespace quillmont
