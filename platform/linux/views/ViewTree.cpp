#include "platform/linux/views/ViewTree.h"

#include <QScrollBar>
#include <algorithm>
#include <utility>

#include "platform/linux/views/ScrollWidget.h"
#include "platform/linux/views/view_widgets.h"
#include "platform/view/native_properties.h"

namespace quillmont {
ViewTree::ViewTree(ViewActions& actions)
    : actions_(actions), root_(new GroupWidget(nullptr)), hover_(actions_), ring_(root_) {
  nodes_[kRootView].view = root_;
}

/// A root that has a parent is not the tree's any more; but what is in it would tell of actions.
ViewTree::~ViewTree() {
  for (auto& [id, node] : nodes_) {
    if (node.popover) actions_.remove(std::move(node.popover));
  }
  if (!root_) return;
  const auto children = nodes_[kRootView].children;
  for (const auto child : children) {
    if (auto* const widget = widgetOf(child)) actions_.remove(widget);
  }
  if (!root_->parent()) actions_.remove(root_);
}

QWidget* ViewTree::widgetOf(ViewId view) const {
  const auto found = nodes_.find(view);
  return root_ && found != nodes_.end() && found->second.view ? found->second.view->widget()
                                                              : nullptr;
}

ViewTree::Node* ViewTree::find(ViewId id) {
  const auto found = nodes_.find(id);
  return root_ && found != nodes_.end() ? &found->second : nullptr;
}

void ViewTree::apply(const InsertView& change) {
  auto* const parent = find(change.parent);
  if (!parent || find(change.id)) return;
  Node node;
  node.parent = change.parent;
  node.properties = change.properties;
  node.frame = change.frame;
  if (std::holds_alternative<NativePopover>(change.properties.content)) {
    node.popover = std::make_unique<PopoverWidget>(*parent->view, root_, change.id, actions_);
    node.view = node.popover.get();
  } else {
    node.view =
        makeViewWidget(change.properties.content, parent->view->childArea(), change.id, actions_);
  }
  if (auto* const scroll = dynamic_cast<ScrollWidget*>(node.view)) {
    QObject::connect(scroll->verticalScrollBar(), &QScrollBar::valueChanged, &hover_,
                     &HoverTracker::lookAgain);
  }
  const auto index = std::min(change.index, parent->children.size());
  parent->children.insert(parent->children.begin() + static_cast<std::ptrdiff_t>(index), change.id);
  auto& inserted = nodes_.emplace(change.id, std::move(node)).first->second;
  place(inserted);
  take(change.id, inserted);
  if (!inserted.popover) {
    restack(change.id);
    inserted.view->widget()->show();
  }
  structureChanged_ = true;
}

void ViewTree::apply(const RemoveView& change) {
  auto* const node = find(change.id);
  if (!node || change.id == kRootView) return;
  std::erase(find(node->parent)->children, change.id);
  auto* const widget = node->popover ? nullptr : node->view->widget();
  forget(change.id);
  if (widget) actions_.remove(widget);
  structureChanged_ = true;
}

void ViewTree::apply(const MoveView& change) {
  auto* const node = find(change.id);
  if (!node || change.id == kRootView) return;
  auto& siblings = find(node->parent)->children;
  std::erase(siblings, change.id);
  const auto index = std::min(change.index, siblings.size());
  siblings.insert(siblings.begin() + static_cast<std::ptrdiff_t>(index), change.id);
  if (!node->popover) restack(change.id);
  structureChanged_ = true;
}

void ViewTree::apply(const UpdateView& change) {
  auto* const node = find(change.id);
  if (!node || !sameKind(node->properties, change.properties)) return;
  node->properties = change.properties;
  take(change.id, *node);
}

void ViewTree::apply(const SetViewFrame& change) {
  auto* const node = find(change.id);
  if (!node || change.id == kRootView) return;
  node->frame = change.frame;
  place(*node);
}

void ViewTree::end() {
  if (std::exchange(structureChanged_, false) && root_) {
    std::vector<QWidget*> stops;
    orderFocus(nodes_[kRootView], stops);
  }
  for (auto& [id, node] : nodes_) {
    if (node.popover) node.popover->present();
  }
  ring_.follow();
  hover_.lookAgain();
  hover_.release();
}

void ViewTree::appearanceDidChange() {
  if (!root_) return;
  root_->update();
  for (auto& [id, node] : nodes_) {
    if (node.popover) node.popover->appearanceDidChange();
  }
}

void ViewTree::take(ViewId id, Node& node) {
  node.view->take(node.properties);
  if (node.popover) return;
  describe(node);
  if (node.properties.tracksHover) {
    hover_.track(id, node.view->widget());
  } else {
    hover_.forget(id);
  }
}

void ViewTree::describe(const Node& node) {
  describeWidget(*node.view->widget(), node.properties, isInButton(node));
}

/// Children keep their places in a frame that begins at another part of a pixel.
void ViewTree::place(Node& node) {
  const auto before = node.view->childOrigin();
  const auto origin = find(node.parent)->view->childOrigin();
  const auto& frame = node.frame;
  node.view->place(QRectF(frame.x, frame.y, frame.width, frame.height).translated(origin));
  if (node.view->childOrigin() == before) return;
  for (const auto child : node.children) place(*find(child));
}

/// Puts the widget behind the next one of its siblings.
void ViewTree::restack(ViewId id) {
  auto& node = *find(id);
  const auto& siblings = find(node.parent)->children;
  for (auto at = std::next(std::find(siblings.begin(), siblings.end(), id)); at != siblings.end();
       ++at) {
    auto& sibling = *find(*at);
    if (!sibling.popover) return node.view->widget()->stackUnder(sibling.view->widget());
  }
  node.view->widget()->raise();
}

/// Removes the names of a view and of all below it. Popovers close; other widgets are left.
void ViewTree::forget(ViewId id) {
  for (const auto child : std::exchange(find(id)->children, {})) forget(child);
  auto popover = std::move(find(id)->popover);
  hover_.forget(id);
  nodes_.erase(id);
  if (popover) actions_.remove(std::move(popover));
}

bool ViewTree::isInButton(const Node& node) const {
  for (auto id = node.parent; id != kRootView; id = nodes_.at(id).parent) {
    if (std::holds_alternative<NativeButton>(nodes_.at(id).properties.content)) return true;
  }
  return false;
}

/// Tab goes through the views in their order. Every popover is a window with an order of its own.
void ViewTree::orderFocus(const Node& top, std::vector<QWidget*>& stops) {
  for (const auto id : top.children) {
    auto& node = nodes_.at(id);
    if (node.popover) {
      std::vector<QWidget*> ofPopover;
      orderFocus(node, ofPopover);
      continue;
    }
    const auto before = stops.size();
    node.view->addFocusStops(stops);
    for (auto stop = std::max<std::size_t>(before, 1); stop < stops.size(); ++stop) {
      QWidget::setTabOrder(stops[stop - 1], stops[stop]);
    }
    orderFocus(node, stops);
  }
}

}  // namespace quillmont
