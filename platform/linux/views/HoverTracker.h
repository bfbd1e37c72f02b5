// Where the pointer is.
#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>
#include <unordered_map>

#include "platform/view/HoverStates.h"

namespace quillmont {

/// Tells when the pointer comes to a view and leaves it, also while the window is not the active
/// one. A view that is hidden under the pointer has been left. Main thread.
class HoverTracker : public QObject {
 public:
  /// `actions` must outlive the tracker.
  explicit HoverTracker(ViewActions& actions);

  void track(ViewId view, QWidget* widget);

  /// Nothing more is told of the view, not even that it has been left.
  void forget(ViewId view);

  /// Between these two, nothing is told; what has happened by then is told soon after.
  void hold() { states_.hold(); }
  void release() { states_.release(); }

  /// Looks for the pointer itself: views have moved below it.
  void lookAgain();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  HoverStates states_;
  std::unordered_map<ViewId, QPointer<QWidget>> tracked_;
};

}  // namespace quillmont
