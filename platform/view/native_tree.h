// The native views that a panel comes down to, and what leads from one panel to the next.
#pragma once

#include <set>
#include <vector>

#include "platform/view/Element.h"
#include "platform/view/NativeView.h"

namespace quillmont {

struct NativeNode {
  ViewId id = kRootView;
  NativeProperties properties;
  Rect frame;  ///< in the parent's coordinates
  ViewHandlers handlers;
  std::vector<NativeNode> children;  ///< back to front
};

/// The native views of a panel that has been laid out. What only arranges others is gone; tooltips,
/// hover and popovers are with the native view that fills the same frame, or with a group made for
/// them. Every frame begins and ends at a device pixel, of which there are `scale` a point.
NativeNode nativeTree(const Element& root, double scale);

/// What turns `before` into `after`. A view stays the same where its identity, its parent and its
/// kind do; as many as can keep their places among their siblings. `told` are controls whose state
/// is told again even if nothing has changed: the user has changed them meanwhile.
std::vector<ViewChange> changesBetween(const NativeNode& before, const NativeNode& after,
                                       const std::set<ViewId>& told = {});

}  // namespace quillmont
