#include "platform/linux/views/HoverTracker.h"

#include <QCursor>
#include <QEvent>
#include <QTimer>
#include <map>
#include <vector>

namespace quillmont {
namespace {

/// What takes the pointer in each window; asked once, for there may be hundreds of views.
class Targets {
 public:
  bool isWithin(const QWidget& widget) {
    auto* const window = widget.window();
    const auto known = targets_.find(window);
    const auto* const target =
        known != targets_.end() ? known->second : (targets_[window] = targetIn(*window));
    return target && (target == &widget || widget.isAncestorOf(target));
  }

 private:
  static const QWidget* targetIn(const QWidget& window) {
    return window.childAt(window.mapFromGlobal(QCursor::pos()));
  }

  std::map<const QWidget*, const QWidget*> targets_;
};

}  // namespace

void HoverTracker::track(ViewId view, QWidget* widget) {
  auto& tracked = tracked_[view];
  if (tracked.widget == widget) return;
  tracked.widget = widget;
  widget->installEventFilter(this);
}

void HoverTracker::forget(ViewId view) {
  const auto found = tracked_.find(view);
  if (found == tracked_.end()) return;
  if (found->second.widget) found->second.widget->removeEventFilter(this);
  tracked_.erase(found);
}

void HoverTracker::release() {
  held_ = false;
  tellSoon();
}

void HoverTracker::lookAgain() {
  Targets targets;
  for (auto& [view, tracked] : tracked_) {
    // Elsewhere the system's idea of where the pointer is may be an old one.
    if (!tracked.widget || !tracked.widget->window()->underMouse()) continue;
    tracked.isInside = tracked.widget->isVisible() && targets.isWithin(*tracked.widget);
  }
  tellSoon();
}

bool HoverTracker::eventFilter(QObject* watched, QEvent* event) {
  const auto type = event->type();
  if (type != QEvent::Enter && type != QEvent::Leave && type != QEvent::Hide) return false;
  for (auto& [view, tracked] : tracked_) {
    if (tracked.widget == watched) tracked.isInside = type == QEvent::Enter;
  }
  if (!held_) tell();
  return false;
}

void HoverTracker::tellSoon() {
  if (scheduled_) return;
  scheduled_ = true;
  QTimer::singleShot(0, this, [this] {
    scheduled_ = false;
    if (!held_) tell();
  });
}

void HoverTracker::tell() {
  tellThose(false);
  tellThose(true);
}

/// An action may change the panel, and with it what is tracked.
void HoverTracker::tellThose(bool areInside) {
  std::vector<ViewId> views;
  for (const auto& [view, tracked] : tracked_) {
    if (tracked.isInside == areInside && tracked.toldInside != areInside) views.push_back(view);
  }
  for (const auto view : views) {
    const auto found = tracked_.find(view);
    if (found == tracked_.end() || found->second.isInside != areInside) continue;
    found->second.toldInside = areInside;
    actions_.hover(view, areInside);
  }
}

}  // namespace quillmont
