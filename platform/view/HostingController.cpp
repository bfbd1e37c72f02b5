#include "platform/view/HostingController.h"

#include <functional>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "platform/view/changes.h"
#include "platform/view/layout.h"
#include "platform/view/native_tree.h"
#include "platform/view/resolve.h"

namespace quillmont {

class HostingController::Panel : public std::enable_shared_from_this<Panel> {
 public:
  Panel(View rootView, RunLoop& runLoop, Localizer localize)
      : rootView_(std::move(rootView)),
        runLoop_(runLoop),
        // What a view remembers may outlive the panel in somebody's closure.
        resolver_(std::move(localize), [self = self_] {
          if (*self) (*self)->setNeedsUpdate();
        }) {}
  ~Panel() { *self_ = nullptr; }

  void mount(NativeMount& native, const Metrics& metrics) {
    unmount();
    native_ = &native;
    metrics_ = &metrics;
    onScreen_ = {};
    metricsDidChange();
  }

  void unmount() {
    native_ = nullptr;
    metrics_ = nullptr;
    leaveGone(onScreen_);
  }

  void setVisible(bool visible) {
    if (visible_ == visible) return;
    visible_ = visible;
    if (!visible) {
      std::vector<std::function<void(bool)>> dismissals;
      collectPopovers(onScreen_, dismissals);
      for (const auto& dismiss : dismissals) dismiss(false);
    } else if (needsUpdate_) {
      update();
    }
  }

  Size size() const { return size_; }

  void metricsDidChange() {
    knowsMetrics_ = false;
    needsUpdate_ = true;
    if (visible_) update();
  }

  /// What a view on the screen calls by this handler; none, if there is no such view.
  template <class Action>
  std::vector<Action> actionsOf(ViewId id, Action ViewHandlers::*handler) const {
    return native_ ? actionsIn(onScreen_, id, handler) : std::vector<Action>();
  }

  /// The control shows what the user has made of it; the next update tells it what holds.
  void userChanged(ViewId id) {
    changedByUser_.insert(id);
    setNeedsUpdate();
  }

  void hover(ViewId id, bool isInside) {
    const auto actions = actionsOf(id, &ViewHandlers::onHover);
    if (actions.empty()) return;
    if (isInside) {
      hovered_.insert(id);
    } else {
      hovered_.erase(id);
    }
    for (const auto& action : actions) action(isInside);
  }

 private:
  void setNeedsUpdate() {
    needsUpdate_ = true;
    if (!visible_ || scheduled_) return;
    scheduled_ = true;
    runLoop_.async([weak = weak_from_this()] {
      const auto self = weak.lock();
      if (!self) return;
      self->scheduled_ = false;
      if (self->visible_ && self->needsUpdate_) self->update();
    });
  }

  void update() {
    if (!native_) return;
    needsUpdate_ = false;
    resolver_.resolve(rootView_, root_);
    if (!std::exchange(knowsMetrics_, true)) {
      texts_.clear();
      forgetLayout(root_);
    }
    size_ = layOut(root_, *metrics_, texts_);
    auto next = nativeTree(root_, metrics_->scale());
    const auto changes = changesBetween(onScreen_, next, std::exchange(changedByUser_, {}));
    const auto before = std::exchange(onScreen_, std::move(next));
    native_->apply(changes, {onScreen_.frame.width, onScreen_.frame.height});
    leaveGone(before);
  }

  /// The pointer has left what is no longer there, or no longer asks for it.
  void leaveGone(const NativeNode& before) {
    std::vector<std::function<void(bool)>> leaving;
    for (const auto id : std::exchange(hovered_, {})) {
      if (!actionsOf(id, &ViewHandlers::onHover).empty()) {
        hovered_.insert(id);
      } else {
        const auto actions = actionsIn(before, id, &ViewHandlers::onHover);
        leaving.insert(leaving.end(), actions.begin(), actions.end());
      }
    }
    for (const auto& leave : leaving) leave(false);
  }

  /// The user acts rarely, and a panel is redrawn every second: the views are searched.
  static const NativeNode* find(const NativeNode& node, ViewId id) {
    if (node.id == id) return &node;
    for (const auto& child : node.children) {
      if (const auto* const found = find(*child, id)) return found;
    }
    return nullptr;
  }

  template <class Action>
  static std::vector<Action> actionsIn(const NativeNode& root, ViewId id,
                                       Action ViewHandlers::*handler) {
    const auto* const node = find(root, id);
    return node ? quillmont::actionsOf(*node, handler) : std::vector<Action>();
  }

  /// Inner ones first.
  static void collectPopovers(const NativeNode& node,
                              std::vector<std::function<void(bool)>>& actions) {
    for (const auto& child : node.children) collectPopovers(*child, actions);
    if (std::holds_alternative<NativePopover>(node.properties.content)) {
      actions.push_back(node.handlers.front()->onToggle);
    }
  }

  const std::shared_ptr<Panel*> self_ = std::make_shared<Panel*>(this);
  const View rootView_;
  RunLoop& runLoop_;
  Resolver resolver_;
  TextSizes texts_;
  NativeMount* native_ = nullptr;
  const Metrics* metrics_ = nullptr;

  Element root_;
  NativeNode onScreen_;
  std::set<ViewId> hovered_;
  std::set<ViewId> changedByUser_;
  Size size_;
  bool visible_ = false;
  bool needsUpdate_ = true;
  bool knowsMetrics_ = false;  ///< whether what has been laid out still holds
  bool scheduled_ = false;
};

HostingController::HostingController(View rootView, RunLoop& runLoop, Localizer localize)
    : panel_(std::make_shared<Panel>(std::move(rootView), runLoop, std::move(localize))) {}

HostingController::~HostingController() = default;

// What an update or a dismissal tells may end the controller; the panel itself lasts until then.

void HostingController::mount(NativeMount& native, const Metrics& metrics) {
  std::shared_ptr(panel_)->mount(native, metrics);
}

void HostingController::unmount() {
  std::shared_ptr(panel_)->unmount();
}

void HostingController::setVisible(bool visible) {
  std::shared_ptr(panel_)->setVisible(visible);
}

Size HostingController::size() const {
  return panel_->size();
}

void HostingController::metricsDidChange() {
  std::shared_ptr(panel_)->metricsDidChange();
}

// An action may change the panel or end the program: it runs on a copy of its own.

void HostingController::press(ViewId button) {
  for (const auto& action : panel_->actionsOf(button, &ViewHandlers::onPress)) action();
}

void HostingController::toggle(ViewId control, bool isOn) {
  const auto actions = panel_->actionsOf(control, &ViewHandlers::onToggle);
  if (actions.empty()) return;
  panel_->userChanged(control);
  for (const auto& action : actions) action(isOn);
}

void HostingController::select(ViewId segments, std::size_t index) {
  const auto actions = panel_->actionsOf(segments, &ViewHandlers::onSelect);
  if (actions.empty()) return;
  panel_->userChanged(segments);
  for (const auto& action : actions) action(index);
}

void HostingController::hover(ViewId view, bool isInside) {
  panel_->hover(view, isInside);
}

void HostingController::dismiss(ViewId popover) {
  for (const auto& action : panel_->actionsOf(popover, &ViewHandlers::onToggle)) action(false);
}

}  // namespace quillmont
