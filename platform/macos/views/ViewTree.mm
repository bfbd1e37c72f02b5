#include "platform/macos/views/ViewTree.h"

#include <algorithm>
#include <utility>

#include "platform/macos/views/mounted_view_kinds.h"
#include "platform/view/native_properties.h"

namespace quillmont {
namespace {

/// From one to the next, and from the last to the first.
void chain(const std::vector<NSView*>& stops) {
  for (std::size_t i = 0; i < stops.size(); ++i) {
    [stops[i] setNextKeyView:stops[(i + 1) % stops.size()]];
  }
}

}  // namespace

ViewTree::ViewTree(ViewActions& actions) : actions_(actions), hover_(actions_) {
  auto group = std::make_unique<GroupView>();
  group->area()->onWindowChange = [this] {
    orderFocus();
    if ([[root() window] isVisible]) presentPopovers();
  };
  nodes_[kRootView].view = std::move(group);
  hover_.watch(root());
}

/// Whoever has put the panel into a window may keep it there; but it is an empty one now.
ViewTree::~ViewTree() {
  const auto children = nodes_[kRootView].children;
  for (const auto child : children) apply(RemoveView{child});
}

NSView* ViewTree::root() const {
  return nodes_.at(kRootView).view->view();
}

NSView* ViewTree::viewOf(ViewId view) const {
  const auto* const found = mounted(view);
  return found ? found->view() : nil;
}

MountedView* ViewTree::mounted(ViewId view) const {
  const auto found = nodes_.find(view);
  return found != nodes_.end() ? found->second.view.get() : nullptr;
}

ViewTree::Node* ViewTree::find(ViewId id) {
  const auto found = nodes_.find(id);
  return found != nodes_.end() ? &found->second : nullptr;
}

void ViewTree::apply(const InsertView& change) {
  auto* const parent = find(change.parent);
  if (!parent || find(change.id)) return;
  Node node;
  node.parent = change.parent;
  node.properties = change.properties;
  node.frame = change.frame;
  node.view = makeMountedView(change.properties.content, *parent->view, change.id, actions_,
                              [this] { hover_.lookAgain(); });
  node.popover = dynamic_cast<PopoverView*>(node.view.get());
  const auto index = std::min(change.index, parent->children.size());
  parent->children.insert(parent->children.begin() + static_cast<std::ptrdiff_t>(index), change.id);
  auto& inserted = nodes_.emplace(change.id, std::move(node)).first->second;
  place(inserted);
  take(change.id, inserted);
  if (inserted.popover) {
    hover_.watch(inserted.view->view());
  } else {
    stack(change.id);
  }
  structureChanged_ = true;
}

void ViewTree::apply(const RemoveView& change) {
  auto* const node = find(change.id);
  if (!node || change.id == kRootView) return;
  std::erase(find(node->parent)->children, change.id);
  if (!node->popover) moveFocusFrom(node->view->view());
  node->view->leave();
  forget(change.id);
  structureChanged_ = true;
}

void ViewTree::apply(const MoveView& change) {
  auto* const node = find(change.id);
  if (!node || change.id == kRootView) return;
  auto& parent = *find(node->parent);
  auto& siblings = parent.children;
  std::erase(siblings, change.id);
  const auto index = std::min(change.index, siblings.size());
  siblings.insert(siblings.begin() + static_cast<std::ptrdiff_t>(index), change.id);
  if (!node->popover) restack(parent);
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
  if (std::exchange(structureChanged_, false)) orderFocus();
  presentPopovers();
  hover_.lookAgain();
  hover_.release();
}

void ViewTree::setVisible(bool visible) {
  isHidden_ = !visible;
  if (visible) return presentPopovers();
  for (const auto& [id, node] : nodes_) node.view->letGo();
  std::vector<ViewId> popovers;
  for (const auto& [id, node] : nodes_) {
    if (node.popover) popovers.push_back(id);
  }
  for (const auto id : popovers) {
    // What is told may be the end of others.
    if (auto* const node = find(id)) node->popover->dismiss();
  }
  hover_.leaveAll();
}

void ViewTree::appearanceDidChange() {
  for (const auto& [id, node] : nodes_) [node.view->view() setNeedsDisplay:YES];
}

void ViewTree::take(ViewId id, Node& node) {
  const auto before = node.view->childOrigin();
  node.view->take(node.properties);
  if (node.view->childOrigin() != before) place(node);
  if (node.popover) return;
  describe(node);
  if (node.properties.tracksHover) {
    hover_.track(id, node.view->view());
  } else {
    hover_.forget(id);
  }
}

void ViewTree::describe(const Node& node) {
  describeView(*node.view, node.properties, isInButton(node));
}

/// Children keep their places in a frame that begins elsewhere in its view.
void ViewTree::place(Node& node) {
  const auto origin = find(node.parent)->view->childOrigin();
  const auto& frame = node.frame;
  node.view->place({frame.x + origin.x, frame.y + origin.y, frame.width, frame.height});
  for (const auto child : node.children) {
    auto& inner = *find(child);
    if (!inner.popover) place(inner);
  }
}

/// Puts a new view behind the next one of its siblings.
void ViewTree::stack(ViewId id) {
  auto& node = *find(id);
  auto& parent = *find(node.parent);
  const auto& siblings = parent.children;
  for (auto at = std::next(std::find(siblings.begin(), siblings.end(), id)); at != siblings.end();
       ++at) {
    const auto& sibling = *find(*at);
    if (sibling.popover) continue;
    [parent.view->childArea() addSubview:node.view->view()
                              positioned:NSWindowBelow
                              relativeTo:sibling.view->view()];
    return;
  }
  [parent.view->childArea() addSubview:node.view->view()];
}

/// Told of another order, views stay where they are: taken out and put in again, one would lose the
/// keyboard. What AppKit has put there itself stays behind them.
void ViewTree::restack(const Node& parent) {
  NSMutableArray* const ordered = [NSMutableArray array];
  for (const auto child : parent.children) {
    if (!find(child)->popover) [ordered addObject:viewOf(child)];
  }
  NSMutableArray* const all = [NSMutableArray array];
  for (NSView* one in [parent.view->childArea() subviews]) {
    if (![ordered containsObject:one]) [all addObject:one];
  }
  [all addObjectsFromArray:ordered];
  [parent.view->childArea() setSubviews:all];
}

/// The keyboard goes on to what comes after a view that goes.
void ViewTree::moveFocusFrom(NSView* view) {
  NSWindow* const window = [view window];
  NSResponder* const focused = [window firstResponder];
  if (![focused isKindOfClass:[NSView class]]) return;
  NSView* next = static_cast<NSView*>(focused);
  if (![next isDescendantOf:view]) return;
  NSView* const first = next;
  while (next != nil && [next isDescendantOf:view]) {
    next = [next nextKeyView];
    if (next == first) next = nil;
  }
  [window makeFirstResponder:next];
}

/// Removes the names of a view and of all below it, and closes the popovers among them.
void ViewTree::forget(ViewId id) {
  for (const auto child : std::exchange(find(id)->children, {})) {
    if (find(child)->popover) find(child)->view->leave();
    forget(child);
  }
  hover_.forget(id);
  auto node = nodes_.extract(id);
  if (node.mapped().popover) hover_.unwatch(node.mapped().view->view());
  actions_.remove(std::move(node.mapped().view));
}

bool ViewTree::isInButton(const Node& node) const {
  if (&node == &nodes_.at(kRootView)) return false;
  for (auto id = node.parent; id != kRootView; id = nodes_.at(id).parent) {
    const auto& around = nodes_.at(id);
    if (around.popover) return false;
    if (std::holds_alternative<NativeButton>(around.properties.content)) return true;
  }
  return false;
}

/// Tab goes through the views in their order. Every popover is a window with an order of its own.
void ViewTree::orderFocus() {
  const auto order = [this](const Node& top) {
    [[top.view->view() window] setAutorecalculatesKeyViewLoop:NO];
    std::vector<NSView*> stops;
    collectFocus(top, stops);
    chain(stops);
  };
  order(nodes_.at(kRootView));
  for (const auto& [id, node] : nodes_) {
    if (node.popover) order(node);
  }
}

void ViewTree::collectFocus(const Node& top, std::vector<NSView*>& stops) {
  for (const auto id : top.children) {
    const auto& node = nodes_.at(id);
    if (node.popover) continue;
    if (node.view->takesFocus()) stops.push_back(node.view->view());
    collectFocus(node, stops);
  }
}

void ViewTree::presentPopovers() {
  if (isHidden_) return;
  for (const auto& [id, node] : nodes_) {
    if (node.popover) node.popover->present();
  }
}

}  // namespace quillmont
