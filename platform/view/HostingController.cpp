#include "platform/view/HostingController.h"

#include <functional>
#include <optional>
#include <set>
#include <unordered_map>
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
    texts_.clear();
    needsUpdate_ = true;
    if (visible_) update();
  }

  void unmount() {
    native_ = nullptr;
    metrics_ = nullptr;
    leaveGone(std::exchange(handlers_, {}));
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
    texts_.clear();
    needsUpdate_ = true;
    if (visible_) update();
  }

  ViewHandlers handlersOf(ViewId id) const {
    const auto found = handlers_.find(id);
    return found == handlers_.end() ? ViewHandlers() : found->second;
  }

  /// The control shows what the user has made of it; the next update tells it what holds.
  void userChanged(ViewId id) {
    changedByUser_.insert(id);
    setNeedsUpdate();
  }

  void hover(ViewId id, bool isInside) {
    const auto action = handlersOf(id).onHover;
    if (!action) return;
    if (isInside) {
      hovered_.insert(id);
    } else {
      hovered_.erase(id);
    }
    action(isInside);
  }

 private:
  using Handlers = std::unordered_map<ViewId, ViewHandlers>;

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
    root_ = resolver_.resolve(rootView_, root_ ? &*root_ : nullptr);
    size_ = layOut(*root_, *metrics_, texts_);
    auto next = nativeTree(*root_, metrics_->scale());
    const auto changes = changesBetween(onScreen_, next, std::exchange(changedByUser_, {}));
    onScreen_ = std::move(next);
    const auto before = std::exchange(handlers_, {});
    collectHandlers(onScreen_);
    native_->apply(changes, {onScreen_.frame.width, onScreen_.frame.height});
    leaveGone(before);
  }

  /// The pointer has left what is no longer there, or no longer asks for it.
  void leaveGone(const Handlers& before) {
    for (const auto id : std::exchange(hovered_, {})) {
      if (handlersOf(id).onHover) {
        hovered_.insert(id);
      } else if (const auto gone = before.find(id); gone != before.end()) {
        gone->second.onHover(false);
      }
    }
  }

  void collectHandlers(const NativeNode& node) {
    const auto& handlers = node.handlers;
    if (handlers.onPress || handlers.onToggle || handlers.onSelect || handlers.onHover) {
      handlers_.emplace(node.id, handlers);
    }
    for (const auto& child : node.children) collectHandlers(child);
  }

  /// Inner ones first.
  static void collectPopovers(const NativeNode& node,
                              std::vector<std::function<void(bool)>>& actions) {
    for (const auto& child : node.children) collectPopovers(child, actions);
    if (std::holds_alternative<NativePopover>(node.properties.content)) {
      actions.push_back(node.handlers.onToggle);
    }
  }

  const std::shared_ptr<Panel*> self_ = std::make_shared<Panel*>(this);
  const View rootView_;
  RunLoop& runLoop_;
  Resolver resolver_;
  TextSizes texts_;
  NativeMount* native_ = nullptr;
  const Metrics* metrics_ = nullptr;

  std::optional<Element> root_;
  NativeNode onScreen_;
  Handlers handlers_;
  std::set<ViewId> hovered_;
  std::set<ViewId> changedByUser_;
  Size size_;
  bool visible_ = false;
  bool needsUpdate_ = true;
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
  const auto action = panel_->handlersOf(button).onPress;
  if (action) action();
}

void HostingController::toggle(ViewId control, bool isOn) {
  const auto action = panel_->handlersOf(control).onToggle;
  if (!action) return;
  panel_->userChanged(control);
  action(isOn);
}

void HostingController::select(ViewId segments, std::size_t index) {
  const auto action = panel_->handlersOf(segments).onSelect;
  if (!action) return;
  panel_->userChanged(segments);
  action(index);
}

void HostingController::hover(ViewId view, bool isInside) {
  panel_->hover(view, isInside);
}

void HostingController::dismiss(ViewId popover) {
  const auto action = panel_->handlersOf(popover).onToggle;
  if (action) action(false);
}

}  // namespace quillmont
