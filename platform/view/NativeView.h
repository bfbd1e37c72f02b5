// What a host puts on the screen: the few kinds of native views that a panel comes down to, and
// the changes that lead from one panel to the next.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "platform/Popover.h"
#include "platform/view/Color.h"
#include "platform/view/Font.h"
#include "platform/view/geometry.h"

namespace quillmont {

/// Names a native view for as long as it is on the screen. 0 is the panel itself.
using ViewId = std::uint64_t;
inline constexpr ViewId kRootView = 0;

/// Holds children and draws nothing.
struct NativeGroup {
  bool operator==(const NativeGroup&) const = default;
};

/// A text. One that does not fit in its frame ends in an ellipsis.
struct NativeLabel {
  std::string text;
  Font font;
  Color color;
  std::optional<int> lineLimit = {};
  TextAlignment alignment = TextAlignment::leading;
  bool operator==(const NativeLabel&) const = default;
};

/// A symbol of the system, in one colour, centred in its frame.
struct NativeSymbol {
  std::string name;
  Font font;  ///< the symbol has the size and the weight of this font's letters
  Color color;
  bool operator==(const NativeSymbol&) const = default;
};

struct Stroke {
  Color color;
  double lineWidth = 1;  ///< half of it inside the outline, half outside
  bool operator==(const Stroke&) const = default;
};

/// The blur is twice the radius; the offset is to the right and downwards.
struct Shadow {
  Color color;
  double radius = 0;
  Point offset;
  bool operator==(const Shadow&) const = default;
};

/// A figure that fills its frame; its stroke and its shadow reach beyond it.
struct NativeShape {
  enum class Kind { rectangle, circle, roundedRectangle };
  Kind kind = Kind::rectangle;
  double cornerRadius = 0;  ///< of continuous corners
  std::optional<Color> fill = {};
  std::optional<Stroke> stroke = {};
  std::optional<Shadow> shadow = {};
  bool operator==(const NativeShape&) const = default;
};

/// A switch, which is `tint` when it is on.
struct NativeSwitch {
  bool isOn = false;
  Color tint;
  bool operator==(const NativeSwitch&) const = default;
};

/// A checkbox with its title, which is a part of the control.
struct NativeCheckbox {
  bool isOn = false;
  std::string title;
  Font font;
  Color color;
  bool operator==(const NativeCheckbox&) const = default;
};

/// Segments in a row, one of which may be selected.
struct NativeSegments {
  std::vector<std::string> labels;
  std::optional<std::size_t> selected = {};
  bool operator==(const NativeSegments&) const = default;
};

/// A button without looks of its own: its children are its label.
struct NativeButton {
  bool operator==(const NativeButton&) const = default;
};

/// Scrolls its children vertically; their frames are in the content's coordinates.
struct NativeScroll {
  Size contentSize;
  bool operator==(const NativeScroll&) const = default;
};

/// A popover that hangs from the view that is its parent. Its frame's size is its content's.
struct NativePopover {
  RectEdge arrowEdge = RectEdge::maxY;  ///< the edge of the parent at which the arrow sits
  bool operator==(const NativePopover&) const = default;
};

using NativeContent =
    std::variant<NativeGroup, NativeLabel, NativeSymbol, NativeShape, NativeSwitch, NativeCheckbox,
                 NativeSegments, NativeButton, NativeScroll, NativePopover>;

struct NativeProperties {
  NativeContent content;
  std::string help = {};                ///< tooltip; empty for none
  std::string accessibilityLabel = {};  ///< what a control is called; empty where its title does
  bool tracksHover = false;             ///< the pointer's coming and going is to be told
  double opacity = 1;
  bool operator==(const NativeProperties&) const = default;
};

// The changes. Each refers to the panel as the ones before it have left it.

/// A new view before the child `index` of `parent`. Its own children follow as insertions.
struct InsertView {
  ViewId id;
  ViewId parent;
  std::size_t index;
  NativeProperties properties;
  Rect frame;  ///< in the parent's coordinates, in whole device pixels
  bool operator==(const InsertView&) const = default;
};

/// Away with the view and all below it.
struct RemoveView {
  ViewId id;
  bool operator==(const RemoveView&) const = default;
};

/// The view becomes the child `index` of its parent, counted without itself.
struct MoveView {
  ViewId id;
  std::size_t index;
  bool operator==(const MoveView&) const = default;
};

/// Other properties, of the same kind of content.
struct UpdateView {
  ViewId id;
  NativeProperties properties;
  bool operator==(const UpdateView&) const = default;
};

struct SetViewFrame {
  ViewId id;
  Rect frame;
  bool operator==(const SetViewFrame&) const = default;
};

using ViewChange = std::variant<InsertView, RemoveView, MoveView, UpdateView, SetViewFrame>;

/// The native side of one panel. Main thread.
class NativeMount {
 public:
  virtual ~NativeMount() = default;

  /// Applies the changes in their order; `size` is the panel's own from then on. Children are drawn
  /// in their order, later ones in front. What the user has in hand stays as it is: scroll offset,
  /// focus, pressed button. A control that is told its own state again takes it.
  virtual void apply(const std::vector<ViewChange>& changes, Size size) = 0;
};

}  // namespace quillmont
