// Segments in a row, one of which may be selected.
#pragma once

#include <vector>

#include "platform/linux/views/NativeWidget.h"
#include "platform/view/ViewActions.h"

namespace quillmont {

/// The row is one stop for Tab; the arrow keys go from segment to segment, and Space selects.
class SegmentsWidget : public QWidget, public NativeWidget {
 public:
  SegmentsWidget(QWidget* parent, ViewId id, ViewActions& actions);

  QWidget* widget() override { return this; }
  void take(const NativeProperties& properties) override;
  void place(const QRectF& frame) override;
  void addFocusStops(std::vector<QWidget*>& stops) override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  class Segment;

  void makeSegments(std::size_t count);
  void arrange();
  void setSelected(std::optional<std::size_t> selected);
  void chosen(std::size_t index);
  void moveFocus(std::size_t from, int step);
  void chooseTabStop();

  const ViewId id_;
  ViewActions& actions_;
  std::vector<Segment*> segments_;
  std::optional<std::size_t> selected_;
};

}  // namespace quillmont
