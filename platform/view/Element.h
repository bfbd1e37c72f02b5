// The panel as it stands: every view with what it inherited, its memory, its native identity and,
// after layout, its frame.
#pragma once

#include <functional>
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
};
/// Its children stand in the stack around it like the stack's own.
struct ListElement {};
struct SpacerElement {
  Axis axis;
};
struct DividerElement {
  Axis stackAxis;
};
struct PaddingElement {
  double top, leading, bottom, trailing;
};
struct FrameElement {
  FrameSize size;
};
/// The second child is laid out on the first.
struct LayerElement {
  bool inFront;
};
struct ScrollElement {};
struct ButtonElement {};
/// A leaf that a host shows: label, symbol, shape, switch, checkbox or segments.
struct LeafElement {
  NativeContent content;
};
/// Has no layout of its own: what a modifier or a composed view adds to its only child.
struct WrapperElement {
  double opacity = 1;
  std::string help = {};
  std::string accessibilityLabel = {};
  bool tracksHover = false;
};
/// The first child is the anchor; the second one, if the popover is presented, a wrapper of its
/// content, which is laid out on its own and whose identity is that of the popover.
struct PopoverElement {
  RectEdge arrowEdge;
};

using ElementContent = std::variant<StackElement, ListElement, SpacerElement, DividerElement,
                                    PaddingElement, FrameElement, LayerElement, ScrollElement,
                                    ButtonElement, LeafElement, WrapperElement, PopoverElement>;

/// What a native view calls. Of a popover, `onToggle` dismisses it.
struct ViewHandlers {
  std::function<void()> onPress;
  std::function<void(bool)> onToggle;
  std::function<void(std::size_t)> onSelect;
  std::function<void(bool)> onHover;
};

struct Element {
  ViewId id = 0;     ///< kept from one build of the panel to the next; unique within it
  std::string key;   ///< in a keyed list
  const void* type;  ///< elements of different types are never the same
  ElementContent content;
  ViewHandlers handlers;
  ViewMemory memory;
  std::vector<Element> children;

  Rect frame;  ///< in the panel's coordinates, or in those of the scroll or popover around it

  /// Sizes that were asked for in this layout.
  mutable std::vector<std::pair<ProposedSize, Size>> sizes;
};

}  // namespace quillmont
