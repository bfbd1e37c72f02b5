// The panel as it stands: every view with what it inherited, its memory, its native identity and,
// after layout, its frame.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "platform/view/Metrics.h"
#include "platform/view/NativeView.h"
#include "platform/view/State.h"
#include "platform/view/View.h"
#include "platform/view/geometry.h"

namespace quillmont {

// What an element is for the layout. A leaf is as large as its native view.

struct StackElement {
  Axis axis;
  Alignment alignment;
  std::optional<double> spacing;
  bool operator==(const StackElement&) const = default;
};
/// Its children stand in the stack around it like the stack's own.
struct ListElement {
  std::vector<std::string> keys;  ///< one a child
  bool operator==(const ListElement&) const = default;
};
struct SpacerElement {
  Axis axis;
  bool operator==(const SpacerElement&) const = default;
};
struct DividerElement {
  Axis stackAxis;
  bool operator==(const DividerElement&) const = default;
};
struct PaddingElement {
  double top, leading, bottom, trailing;
  bool operator==(const PaddingElement&) const = default;
};
struct FrameElement {
  FrameSize size;
  bool operator==(const FrameElement&) const = default;
};
/// The second child is laid out on the first.
struct LayerElement {
  bool inFront;
  bool operator==(const LayerElement&) const = default;
};
struct ScrollElement {
  bool operator==(const ScrollElement&) const = default;
};
struct ButtonElement {
  bool operator==(const ButtonElement&) const = default;
};
/// A leaf that a host shows: label, symbol, shape, switch, checkbox or segments.
struct LeafElement {
  NativeContent content;
  bool operator==(const LeafElement&) const = default;
};
/// Has no layout of its own: what a modifier or a composed view adds to its only child.
struct WrapperElement {
  double opacity = 1;
  std::string help = {};
  std::string accessibilityLabel = {};
  bool tracksHover = false;
  bool operator==(const WrapperElement&) const = default;
};
/// The first child is the anchor; the second one, if the popover is presented, a wrapper of its
/// content, which is laid out on its own and whose identity is that of the popover.
struct PopoverElement {
  RectEdge arrowEdge;
  bool operator==(const PopoverElement&) const = default;
};

using ElementContent = std::variant<StackElement, ListElement, SpacerElement, DividerElement,
                                    PaddingElement, FrameElement, LayerElement, ScrollElement,
                                    ButtonElement, LeafElement, WrapperElement, PopoverElement>;

/// What a native view calls: one of them. Of a popover, `onToggle` dismisses it.
struct ViewHandlers {
  std::function<void()> onPress;
  std::function<void(bool)> onToggle;
  std::function<void(std::size_t)> onSelect;
  std::function<void(bool)> onHover;
};

struct NativeNode;
struct Element;

/// How a stack shares what it was last offered.
struct StackPlan {
  struct Child {
    const Element* element;
    double gapBefore = 0;
    ProposedSize offer = {};
    Size size = {};
  };
  std::vector<Child> children;                    ///< those of lists among them
  std::vector<std::pair<double, Child*>> claims;  ///< of all but spacers, by flexibility
  ProposedSize offer;
  Size size;  ///< of the whole stack
};

/// Lasts from one build of the panel to the next, and with it what need not be reckoned again.
struct Element {
  ViewId id = 0;               ///< unique within the panel
  const void* type = nullptr;  ///< elements of different types are never the same
  ElementContent content;
  /// The functions are other ones after each build; while it has some, they are in one place.
  std::shared_ptr<ViewHandlers> handlers;
  ViewMemory memory;
  std::vector<Element> children;

  // Since the last build, itself or anything inside of it.
  bool changed = true;
  bool resized = true;  ///< it may take another room; what only looks otherwise need not

  Rect frame;  ///< in the panel's coordinates, or in those of the scroll or popover around it
  ProposedSize offer;  ///< to which it answered with the frame's size

  // What the layout has found out since the element was resized. An answer rests on those that the
  // leaves inside have given: these forget none before it is forgotten.

  mutable std::vector<std::pair<ProposedSize, Size>> sizes;  ///< answers of stacks and leaves
  mutable std::optional<Size> textSize;                      ///< of a text in its own lines
  mutable std::unique_ptr<StackPlan> plan;

  /// What it last became in a native parent with its corner there; none if it has changed or moved.
  mutable std::shared_ptr<const NativeNode> native;
  mutable Point nativeOrigin;

  void forgetSizes() {
    sizes.clear();
    textSize.reset();
    if (plan) plan->children.clear();
  }
};

}  // namespace quillmont
