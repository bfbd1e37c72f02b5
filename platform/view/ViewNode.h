// What a view value is made of. Only the view layer itself looks in here.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
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
  Views children;
};
struct KeyedListNode {
  std::vector<std::string> keys;  ///< one a child
  Views children;
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
  View label;
  std::function<void()> action;
  std::optional<ButtonRole> role;
};
struct ScrollNode {
  View inner;
};
struct ComposedNode {
  std::shared_ptr<AnyComposedView> view;
};

// Modifiers; `inner` is the view that they change.

struct EnvironmentNode {
  View inner;
  std::function<void(Environment&)> change;
};
struct PaddingNode {
  View inner;
  double top, leading, bottom, trailing;
};
struct FrameNode {
  View inner;
  FrameSize size;
};
/// The layer lies behind or in front of the inner view.
struct LayerNode {
  View inner, layer;
  bool inFront;
};
struct OpacityNode {
  View inner;
  double opacity;
};
struct HoverNode {
  View inner;
  std::function<void(bool)> action;
};
struct HelpNode {
  View inner;
  std::string key;
};
struct AccessibilityNode {
  View inner;
  std::string key;
};
struct PopoverNode {
  View inner;
  Binding<bool> isPresented;
  RectEdge arrowEdge;
  std::function<View()> content;
};

/// Told what a view is.
class ViewVisitor {
 public:
  virtual ~ViewVisitor() = default;
  virtual void visit(const StackNode&) = 0;
  virtual void visit(const KeyedListNode&) = 0;
  virtual void visit(const TextNode&) = 0;
  virtual void visit(const SymbolNode&) = 0;
  virtual void visit(const SpacerNode&) = 0;
  virtual void visit(const DividerNode&) = 0;
  virtual void visit(const ShapeNode&) = 0;
  virtual void visit(const ToggleNode&) = 0;
  virtual void visit(const PickerNode&) = 0;
  virtual void visit(const ButtonNode&) = 0;
  virtual void visit(const ScrollNode&) = 0;
  virtual void visit(const ComposedNode&) = 0;
  virtual void visit(const EnvironmentNode&) = 0;
  virtual void visit(const PaddingNode&) = 0;
  virtual void visit(const FrameNode&) = 0;
  virtual void visit(const LayerNode&) = 0;
  virtual void visit(const OpacityNode&) = 0;
  virtual void visit(const HoverNode&) = 0;
  virtual void visit(const HelpNode&) = 0;
  virtual void visit(const AccessibilityNode&) = 0;
  virtual void visit(const PopoverNode&) = 0;
};

struct ViewNode {
  virtual ~ViewNode() = default;
  virtual void tell(ViewVisitor& visitor) const = 0;
};

/// Each view takes only the room that its own kind needs: a panel is made of many, once a second.
template <class Content>
struct NodeOf final : ViewNode {
  explicit NodeOf(Content content_) : content(std::move(content_)) {}
  void tell(ViewVisitor& visitor) const override { visitor.visit(content); }
  const Content content;
};

}  // namespace quillmont
