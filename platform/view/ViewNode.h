// What a view value is made of. Only the view layer itself looks in here.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "platform/view/View.h"

namespace quillmont {

/// What holds for everything inside a view, unless something inside says otherwise.
struct Environment {
  Font font = Font::body;
  std::optional<FontWeight> fontWeight;
  std::optional<Color> foregroundColor;
  std::optional<int> lineLimit;
  TextAlignment textAlignment = TextAlignment::leading;
  ToggleStyle toggleStyle = ToggleStyle::switchControl;
  Color tint = Color::cyan;
  bool labelsHidden = false;
  std::shared_ptr<const AnyButtonStyle> buttonStyle;
  Axis stackAxis = Axis::vertical;  ///< of the stack around

  Font effectiveFont() const { return {font.size, fontWeight.value_or(font.weight)}; }
  Color effectiveColor() const { return foregroundColor.value_or(Color::primary); }
};

struct StackNode {
  Axis axis;
  Alignment alignment;  ///< across the axis
  std::optional<double> spacing;
};
struct KeyedListNode {
  std::vector<std::string> keys;  ///< one a child
};
struct TextNode {
  std::string text;
  bool isKey;
};
struct SymbolNode {
  std::string name;
};
struct SpacerNode {};
struct DividerNode {};
struct ShapeNode {
  NativeShape shape;
};
struct ToggleNode {
  std::string key;
  Binding<bool> isOn;
};
struct PickerNode {
  std::string key;
  Binding<double> selection;
  std::vector<PickerOption> options;
};
struct ButtonNode {
  std::function<void()> action;
  std::optional<ButtonRole> role;
};
struct ScrollNode {};
struct ComposedNode {
  std::shared_ptr<AnyComposedView> view;
};

// Modifiers; the first child is the view that they change.

struct EnvironmentNode {
  std::function<void(Environment&)> change;
};
struct PaddingNode {
  double top, leading, bottom, trailing;
};
struct FrameNode {
  FrameSize size;
};
/// The second child lies behind or in front of the first.
struct LayerNode {
  bool inFront;
};
struct OpacityNode {
  double opacity;
};
struct HoverNode {
  std::function<void(bool)> action;
};
struct HelpNode {
  std::string key;
};
struct AccessibilityNode {
  std::string key;
};
struct PopoverNode {
  Binding<bool> isPresented;
  RectEdge arrowEdge;
  std::function<View()> content;
};

using ViewContent =
    std::variant<StackNode, KeyedListNode, TextNode, SymbolNode, SpacerNode, DividerNode, ShapeNode,
                 ToggleNode, PickerNode, ButtonNode, ScrollNode, ComposedNode, EnvironmentNode,
                 PaddingNode, FrameNode, LayerNode, OpacityNode, HoverNode, HelpNode,
                 AccessibilityNode, PopoverNode>;

struct ViewNode {
  ViewContent content;
  std::vector<View> children;
};

}  // namespace quillmont
