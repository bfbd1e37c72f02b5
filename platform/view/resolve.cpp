#include "platform/view/resolve.h"

#include <array>
#include <utility>

#include "platform/view/KeyedChildren.h"
#include "platform/view/ViewNode.h"

namespace quillmont {
namespace {

/// Marks that tell the types of elements apart which no composed view marks.
const void* typeOf(const ElementContent& content) {
  static const std::array<std::array<char, std::variant_size_v<NativeContent>>,
                          std::variant_size_v<ElementContent>>
      marks{};
  const auto* const leaf = std::get_if<LeafElement>(&content);
  return &marks[content.index()][leaf ? leaf->content.index() : 0];
}

}  // namespace

/// Makes an element what a view says it is. `environment` is what holds where the view stands.
class ElementBuilder : public ViewVisitor {
 public:
  ElementBuilder(Resolver& resolver, Element& element, const Environment& environment)
      : resolver_(resolver), element_(element), environment_(environment) {}

  void become(const View& view) { view.node().tell(*this); }

 private:
  void visit(const StackNode& stack) override {
    begin(StackElement{stack.axis, stack.alignment, stack.spacing});
    Environment inside = environment_;
    inside.stackAxis = stack.axis;
    resizeChildren(stack.children.size());
    for (std::size_t i = 0; i < stack.children.size(); ++i) {
      build(element_.children[i], stack.children[i], inside);
    }
    end();
  }

  void visit(const KeyedListNode& list) override {
    const auto* const before = std::get_if<ListElement>(&element_.content);
    const bool isOther = !before || before->keys != list.keys;
    element_.changed = element_.resized = isOther;
    if (isOther) arrange(list.keys);
    for (std::size_t i = 0; i < list.children.size(); ++i) {
      build(element_.children[i], list.children[i], environment_);
    }
    end();
  }

  void arrange(const std::vector<std::string>& keys) {
    KeyedChildren before(element_);
    std::vector<Element> children;
    children.reserve(keys.size());
    for (const auto& key : keys) children.push_back(before.take(key));
    begin(ListElement{keys});
    element_.children = std::move(children);
  }

  void visit(const TextNode& text) override {
    begin(LeafElement{NativeLabel{.text = text.isKey ? localized(text.text) : text.text,
                                  .font = environment_.effectiveFont(),
                                  .color = environment_.effectiveColor(),
                                  .lineLimit = environment_.lineLimit,
                                  .alignment = environment_.textAlignment}});
    end();
  }

  void visit(const SymbolNode& symbol) override {
    begin(LeafElement{NativeSymbol{.name = symbol.name,
                                   .font = environment_.effectiveFont(),
                                   .color = environment_.effectiveColor()}});
    end();
  }

  void visit(const SpacerNode&) override {
    begin(SpacerElement{environment_.stackAxis});
    end();
  }

  void visit(const DividerNode&) override {
    begin(DividerElement{environment_.stackAxis});
    end();
  }

  void visit(const ShapeNode& shape) override {
    begin(LeafElement{shape.shape});
    end();
  }

  void visit(const ToggleNode& toggle) override {
    const bool isCheckbox = environment_.toggleStyle == ToggleStyle::checkbox;
    if (!isCheckbox && isLabelShown(toggle.key)) {
      const auto control = Toggle(toggle.key, toggle.isOn).labelsHidden();
      return become(HStack({Text(toggle.key), control}));
    }
    begin(isCheckbox
              ? LeafElement{checkbox(toggle)}
              : LeafElement{NativeSwitch{.isOn = toggle.isOn.get(), .tint = environment_.tint}});
    handlers().onToggle = [isOn = toggle.isOn](bool value) { isOn.set(value); };
    end();
  }

  NativeCheckbox checkbox(const ToggleNode& toggle) const {
    return {.isOn = toggle.isOn.get(),
            .title = environment_.labelsHidden ? "" : localized(toggle.key),
            .font = environment_.effectiveFont(),
            .color = environment_.effectiveColor()};
  }

  void visit(const PickerNode& picker) override {
    if (isLabelShown(picker.key)) {
      const auto control =
          SegmentedPicker(picker.key, picker.selection, picker.options).labelsHidden();
      return become(HStack({Text(picker.key), control}));
    }
    NativeSegments segments;
    std::vector<double> tags;
    const double selection = picker.selection.get();
    for (const auto& option : picker.options) {
      if (option.tag == selection && !segments.selected) segments.selected = tags.size();
      segments.labels.push_back(localized(option.key));
      tags.push_back(option.tag);
    }
    begin(LeafElement{std::move(segments)});
    handlers().onSelect = [selected = picker.selection, tags = std::move(tags)](std::size_t index) {
      if (index < tags.size()) selected.set(tags[index]);
    };
    end();
  }

  void visit(const ButtonNode& button) override {
    const auto& styling = environment_.buttonStyle;
    begin(ButtonElement{}, styling ? styling->type() : nullptr);
    handlers().onPress = button.action;
    if (!styling) return inside(button.label, environment_);
    const auto style = styling->copy();
    StateScope scope(element_.memory, resolver_.invalidate_);
    style->connect(scope);
    inside(style->makeBody({button.role, button.label}), environment_);
  }

  void visit(const ScrollNode& scroll) override {
    begin(ScrollElement{});
    Environment within = environment_;
    within.stackAxis = Axis::vertical;
    inside(scroll.inner, within);
  }

  void visit(const ComposedNode& composed) override {
    begin(WrapperElement{}, composed.view->type());
    StateScope scope(element_.memory, resolver_.invalidate_);
    composed.view->connect(scope);
    inside(composed.view->body(), environment_);
  }

  void visit(const EnvironmentNode& node) override {
    Environment changed = environment_;
    node.change(changed);
    build(element_, node.inner, changed);
  }

  void visit(const PaddingNode& padding) override {
    begin(PaddingElement{padding.top, padding.leading, padding.bottom, padding.trailing});
    inside(padding.inner, environment_);
  }

  void visit(const FrameNode& frame) override {
    begin(FrameElement{frame.size});
    inside(frame.inner, environment_);
  }

  void visit(const LayerNode& layer) override {
    begin(LayerElement{layer.inFront});
    element_.children.resize(2);
    build(element_.children[0], layer.inner, environment_);
    build(element_.children[1], layer.layer, environment_);
    end();
  }

  void visit(const OpacityNode& opacity) override {
    begin(WrapperElement{.opacity = opacity.opacity});
    inside(opacity.inner, environment_);
  }

  void visit(const HoverNode& hover) override {
    begin(WrapperElement{.tracksHover = true});
    handlers().onHover = hover.action;
    inside(hover.inner, environment_);
  }

  void visit(const HelpNode& help) override {
    begin(WrapperElement{.help = localized(help.key)});
    inside(help.inner, environment_);
  }

  void visit(const AccessibilityNode& node) override {
    begin(WrapperElement{.accessibilityLabel = localized(node.key)});
    inside(node.inner, environment_);
  }

  void visit(const PopoverNode& popover) override {
    begin(PopoverElement{popover.arrowEdge});
    handlers().onToggle = [isPresented = popover.isPresented](bool value) {
      isPresented.set(value);
    };
    const std::size_t count = popover.isPresented.get() ? 2 : 1;
    resizeChildren(count);
    build(element_.children[0], popover.inner, environment_);
    if (count == 2) {
      ElementBuilder(resolver_, element_.children[1], {}).wrap(popover.content());
    }
    end();
  }

  /// The element itself: the one that it was, if it is the same, else a new one.
  void begin(ElementContent content, const void* ownType = nullptr) {
    const auto* const type = ownType ? ownType : typeOf(content);
    if (element_.type != type) {
      element_ = {};
      element_.id = ++resolver_.lastId_;
      element_.type = type;
    } else if (element_.content == content) {
      element_.changed = element_.resized = false;
      return;
    } else {
      element_.changed = true;
      // Of a leaf the layout finds out.
      element_.resized = !std::holds_alternative<LeafElement>(content);
    }
    element_.content = std::move(content);
    // Whoever is still to be told that the pointer has left is told by the old ones.
    element_.handlers = nullptr;
  }

  ViewHandlers& handlers() {
    if (!element_.handlers) element_.handlers = std::make_shared<ViewHandlers>();
    return *element_.handlers;
  }

  /// The only child, and the end of the element.
  void inside(const View& view, const Environment& environment) {
    element_.children.resize(1);
    build(element_.children.front(), view, environment);
    end();
  }

  void wrap(const View& view) {
    begin(WrapperElement{});
    inside(view, environment_);
  }

  void resizeChildren(std::size_t count) {
    if (element_.children.size() == count) return;
    element_.changed = element_.resized = true;
    element_.children.resize(count);
  }

  void end() {
    for (const auto& child : element_.children) element_.changed |= child.changed;
    // One that stays the same may be offered other sizes for ever; what it forgets, those around it
    // forget with it.
    constexpr std::size_t kMostSizes = 16;
    if (element_.sizes.size() > kMostSizes) element_.changed = element_.resized = true;
    if (element_.changed) element_.native = nullptr;
  }

  bool isLabelShown(const std::string& key) const {
    return !environment_.labelsHidden && !key.empty();
  }

  std::string localized(const std::string& key) const {
    return resolver_.localize_ ? resolver_.localize_(key) : key;
  }

  void build(Element& element, const View& view, const Environment& environment) {
    ElementBuilder(resolver_, element, environment).become(view);
  }

  Resolver& resolver_;
  Element& element_;
  const Environment& environment_;
};

void Resolver::resolve(const View& view, Element& root) {
  ElementBuilder(*this, root, {}).become(view);
}

}  // namespace quillmont
