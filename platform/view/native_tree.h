// The native views that a panel comes down to.
#pragma once

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

}  // namespace quillmont
