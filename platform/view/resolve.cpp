#include "platform/view/resolve.h"

#include <algorithm>
#include <array>
#include <unordered_map>
#include <utility>

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

/// The children of a list's element by their keys; of several with one key each is found once.
class KeyedChildren {
 public:
  explicit KeyedChildren(Element& element) {
    const auto* const list = std::get_if<ListElement>(&element.content);
    if (!list) return;
    for (std::size_t i = 0; i < list->keys.size(); ++i) {
      byKey_.emplace(list->keys[i], &element.children[i]);
    }
  }

  /// A new one, if there is none of that key.
  Element take(const std::string& key) {
    const auto [first, last] = byKey_.equal_range(key);
    if (first == last) return {};
    // The order of equal keys is not told; the lowest identity is the one that came first.
    const auto found = std::min_element(first, last, [](const auto& left, const auto& right) {
      return left.second->id < right.second->id;
    });
    auto* const child = found->second;
    byKey_.erase(found);
    return std::move(*child);
  }

 private:
  std::unordered_multimap<std::string, Element*> byKey_;
};

}  // namespace

/// Makes elements what views say they are. `environment` is what holds where the view stands.
class ElementBuilder {
 public:
  explicit ElementBuilder(Resolver& resolver) : resolver_(resolver) {}

  void build(Element& element, const View& view, const Environment& environment) {
    std::visit([&](const auto& node) { make(element, node, environment); }, view.node().content);
  }

 private:
  void make(Element& element, const StackNode& stack, const Environment& environment) {
    begin(element, StackElement{stack.axis, stack.alignment, stack.spacing});
    Environment inside = environment;
    inside.stackAxis = stack.axis;
    element.changed |= element.children.size() != stack.children.size();
    element.children.resize(stack.children.size());
    for (std::size_t i = 0; i < stack.children.size(); ++i) {
      build(element.children[i], stack.children[i], inside);
    }
    end(element);
  }

  void make(Element& element, const KeyedListNode& list, const Environment& environment) {
    const auto* const before = std::get_if<ListElement>(&element.content);
    element.changed = !before || before->keys != list.keys;
    if (element.changed) arrange(element, list.keys);
    for (std::size_t i = 0; i < list.children.size(); ++i) {
      build(element.children[i], list.children[i], environment);
    }
    end(element);
  }

  void arrange(Element& element, const std::vector<std::string>& keys) {
    KeyedChildren before(element);
    std::vector<Element> children;
    children.reserve(keys.size());
    for (const auto& key : keys) children.push_back(before.take(key));
    begin(element, ListElement{keys});
    element.children = std::move(children);
  }

  void make(Element& element, const TextNode& text, const Environment& environment) {
    begin(element, LeafElement{NativeLabel{.text = text.isKey ? localized(text.text) : text.text,
                                           .font = environment.effectiveFont(),
                                           .color = environment.effectiveColor(),
                                           .lineLimit = environment.lineLimit,
                                           .alignment = environment.textAlignment}});
    end(element);
  }

  void make(Element& element, const SymbolNode& symbol, const Environment& environment) {
    begin(element, LeafElement{NativeSymbol{.name = symbol.name,
                                            .font = environment.effectiveFont(),
                                            .color = environment.effectiveColor()}});
    end(element);
  }

  void make(Element& element, const SpacerNode&, const Environment& environment) {
    begin(element, SpacerElement{environment.stackAxis});
    end(element);
  }

  void make(Element& element, const DividerNode&, const Environment& environment) {
    begin(element, DividerElement{environment.stackAxis});
    end(element);
  }

  void make(Element& element, const ShapeNode& shape, const Environment&) {
    begin(element, LeafElement{shape.shape});
    end(element);
  }

  void make(Element& element, const ToggleNode& toggle, const Environment& environment) {
    const bool isCheckbox = environment.toggleStyle == ToggleStyle::checkbox;
    if (!isCheckbox && isLabelShown(toggle.key, environment)) {
      const auto control = Toggle(toggle.key, toggle.isOn).labelsHidden();
      return build(element, HStack({Text(toggle.key), control}), environment);
    }
    begin(element, isCheckbox ? LeafElement{checkbox(toggle, environment)}
                              : LeafElement{NativeSwitch{.isOn = toggle.isOn.get(),
                                                         .tint = environment.tint}});
    handlersOf(element).onToggle = [isOn = toggle.isOn](bool value) { isOn.set(value); };
    end(element);
  }

  NativeCheckbox checkbox(const ToggleNode& toggle, const Environment& environment) const {
    return {.isOn = toggle.isOn.get(),
            .title = environment.labelsHidden ? "" : localized(toggle.key),
            .font = environment.effectiveFont(),
            .color = environment.effectiveColor()};
  }

  void make(Element& element, const PickerNode& picker, const Environment& environment) {
    if (isLabelShown(picker.key, environment)) {
      const auto control =
          SegmentedPicker(picker.key, picker.selection, picker.options).labelsHidden();
      return build(element, HStack({Text(picker.key), control}), environment);
    }
    NativeSegments segments;
    std::vector<double> tags;
    const double selection = picker.selection.get();
    for (const auto& option : picker.options) {
      if (option.tag == selection && !segments.selected) segments.selected = tags.size();
      segments.labels.push_back(localized(option.key));
      tags.push_back(option.tag);
    }
    begin(element, LeafElement{std::move(segments)});
    handlersOf(element).onSelect = [selected = picker.selection,
                                    tags = std::move(tags)](std::size_t index) {
      if (index < tags.size()) selected.set(tags[index]);
    };
    end(element);
  }

  void make(Element& element, const ButtonNode& button, const Environment& environment) {
    const auto& styling = environment.buttonStyle;
    begin(element, ButtonElement{}, styling ? styling->type() : nullptr);
    handlersOf(element).onPress = button.action;
    if (!styling) return inside(element, button.label, environment);
    const auto style = styling->copy();
    StateScope scope(element.memory, resolver_.invalidate_);
    style->connect(scope);
    inside(element, style->makeBody({button.role, button.label}), environment);
  }

  void make(Element& element, const ScrollNode& scroll, const Environment& environment) {
    begin(element, ScrollElement{});
    Environment within = environment;
    within.stackAxis = Axis::vertical;
    inside(element, scroll.inner, within);
  }

  void make(Element& element, const ComposedNode& composed, const Environment& environment) {
    begin(element, WrapperElement{}, composed.view->type());
    StateScope scope(element.memory, resolver_.invalidate_);
    composed.view->connect(scope);
    inside(element, composed.view->body(), environment);
  }

  void make(Element& element, const EnvironmentNode& node, const Environment& environment) {
    Environment changed = environment;
    node.change(changed);
    build(element, node.inner, changed);
  }

  void make(Element& element, const PaddingNode& padding, const Environment& environment) {
    begin(element, PaddingElement{padding.top, padding.leading, padding.bottom, padding.trailing});
    inside(element, padding.inner, environment);
  }

  void make(Element& element, const FrameNode& frame, const Environment& environment) {
    begin(element, FrameElement{frame.size});
    inside(element, frame.inner, environment);
  }

  void make(Element& element, const LayerNode& layer, const Environment& environment) {
    begin(element, LayerElement{layer.inFront});
    element.children.resize(2);
    build(element.children[0], layer.inner, environment);
    build(element.children[1], layer.layer, environment);
    end(element);
  }

  void make(Element& element, const OpacityNode& opacity, const Environment& environment) {
    begin(element, WrapperElement{.opacity = opacity.opacity});
    inside(element, opacity.inner, environment);
  }

  void make(Element& element, const HoverNode& hover, const Environment& environment) {
    begin(element, WrapperElement{.tracksHover = true});
    handlersOf(element).onHover = hover.action;
    inside(element, hover.inner, environment);
  }

  void make(Element& element, const HelpNode& help, const Environment& environment) {
    begin(element, WrapperElement{.help = localized(help.key)});
    inside(element, help.inner, environment);
  }

  void make(Element& element, const AccessibilityNode& node, const Environment& environment) {
    begin(element, WrapperElement{.accessibilityLabel = localized(node.key)});
    inside(element, node.inner, environment);
  }

  void make(Element& element, const PopoverNode& popover, const Environment& environment) {
    begin(element, PopoverElement{popover.arrowEdge});
    handlersOf(element).onToggle = [isPresented = popover.isPresented](bool value) {
      isPresented.set(value);
    };
    const std::size_t count = popover.isPresented.get() ? 2 : 1;
    element.changed |= element.children.size() != count;
    element.children.resize(count);
    build(element.children[0], popover.inner, environment);
    if (count == 2) {
      begin(element.children[1], WrapperElement{});
      inside(element.children[1], popover.content(), {});
    }
    end(element);
  }

  /// The element itself: what it was, if it is the same, else a new one.
  void begin(Element& element, ElementContent content, const void* ownType = nullptr) {
    const auto* const type = ownType ? ownType : typeOf(content);
    if (element.type != type) {
      element = {};
      element.id = ++resolver_.lastId_;
      element.type = type;
    } else if (element.content == content) {
      element.changed = false;
      return;
    }
    element.changed = true;
    element.content = std::move(content);
    // Whoever is still to be told that the pointer has left is told by the old ones.
    element.handlers = nullptr;
  }

  static ViewHandlers& handlersOf(Element& element) {
    if (!element.handlers) element.handlers = std::make_shared<ViewHandlers>();
    return *element.handlers;
  }

  /// The only child, and the end of the element.
  void inside(Element& element, const View& view, const Environment& environment) {
    element.children.resize(1);
    build(element.children.front(), view, environment);
    end(element);
  }

  static void end(Element& element) {
    for (const auto& child : element.children) element.changed |= child.changed;
    // An element that stays the same may be offered other sizes for ever.
    constexpr std::size_t kMostSizes = 16;
    if (element.changed || element.sizes.size() > kMostSizes) element.forgetSizes();
  }

  static bool isLabelShown(const std::string& key, const Environment& environment) {
    return !environment.labelsHidden && !key.empty();
  }

  std::string localized(const std::string& key) const {
    return resolver_.localize_ ? resolver_.localize_(key) : key;
  }

  Resolver& resolver_;
};

void Resolver::resolve(const View& view, Element& root) {
  ElementBuilder(*this).build(root, view, {});
}

}  // namespace quillmont
