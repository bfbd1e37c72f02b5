#include "platform/linux/views/HoverTracker.h"

#include <QCursor>
#include <QEvent>
#include <QTimer>
#include <functional>
#include <map>
#include <utility>

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

HoverTracker::HoverTracker(ViewActions& actions)
    : states_(actions, [this](std::function<void()> what) {
        QTimer::singleShot(0, this, std::move(what));
      }) {}

void HoverTracker::track(ViewId view, QWidget* widget) {
  states_.track(view);
  auto& tracked = tracked_[view];
  if (tracked == widget) return;
  tracked = widget;
  widget->installEventFilter(this);
}

void HoverTracker::forget(ViewId view) {
  states_.forget(view);
  const auto found = tracked_.find(view);
  if (found == tracked_.end()) return;
  if (found->second) found->second->removeEventFilter(this);
  tracked_.erase(found);
}

void HoverTracker::lookAgain() {
  Targets targets;
  for (const auto& [view, widget] : tracked_) {
    // Elsewhere the system's idea of where the pointer is may be an old one.
    if (!widget || !widget->window()->underMouse()) continue;
    states_.set(view, widget->isVisible() && targets.isWithin(*widget));
  }
  states_.tellSoon();
}

bool HoverTracker::eventFilter(QObject* watched, QEvent* event) {
  const auto type = event->type();
  if (type != QEvent::Enter && type != QEvent::Leave && type != QEvent::Hide) return false;
  for (const auto& [view, widget] : tracked_) {
    if (widget == watched) states_.set(view, type == QEvent::Enter);
  }
  states_.tell();
  return false;
}

}  // namespace quillmont
