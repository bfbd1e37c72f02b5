// The native views that a panel comes down to.
#pragma once

#include <memory>
#include <vector>

#include "platform/view/Element.h"
#include "platform/view/NativeView.h"

namespace quillmont {

struct NativeNode;
/// Back to front. A node never changes: what is the same from one panel to the next is one node.
using NativeNodes = std::vector<std::shared_ptr<const NativeNode>>;

struct NativeNode {
  ViewId id = kRootView;
  NativeProperties properties;
  Rect frame;  ///< in the parent's coordinates
  /// Those of all elements that it stands for, as they now are; the first is told first.
  std::vector<std::shared_ptr<const ViewHandlers>> handlers;
  NativeNodes children;
};

/// Copies of what is to be called by this handler of the view, in that order.
template <class Action>
std::vector<Action> actionsOf(const NativeNode& node, Action ViewHandlers::*handler) {
  std::vector<Action> actions;
  for (const auto& handlers : node.handlers) {
    if (const auto& action = (*handlers).*handler) actions.push_back(action);
  }
  return actions;
}

/// The native views of a panel that has been laid out. What only arranges others is gone; tooltips,
/// hover and popovers are with the native view that fills the same frame, or with a group made for
/// them. Every frame begins and ends at a device pixel, of which there are `scale` a point: as many
/// as before, or forgetLayout() comes first.
NativeNode nativeTree(const Element& root, double scale);

}  // namespace quillmont
