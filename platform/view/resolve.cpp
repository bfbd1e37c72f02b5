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
  explicit KeyedChildren(Element* list) {
    if (!list) return;
    for (auto& child : list->children) byKey_.emplace(child.key, &child);
  }

  Element* take(const std::string& key) {
    const auto [first, last] = byKey_.equal_range(key);
    if (first == last) return nullptr;
    // The order of equal keys is not told; the lowest identity is the one that came first.
    const auto found = std::min_element(first, last, [](const auto& left, const auto& right) {
      return left.second->id < right.second->id;
    });
    auto* const child = found->second;
    byKey_.erase(found);
    return child;
  }

 private:
  std::unordered_multimap<std::string, Element*> byKey_;
};

}  // namespace

/// Builds the element of one view; `previous` stood in its place before, or nothing.
class ElementBuilder {
 public:
  ElementBuilder(Resolver& resolver, Environment environment, Element* previous)
      : resolver_(resolver), environment_(std::move(environment)), previous_(previous) {}

  Element build(const View& view) {
    const auto& node = view.node();
    return std::visit([&](const auto& content) { return make(content, node.children); },
                      node.content);
  }

 private:
  Element make(const StackNode& stack, const Views& children) {
    auto element = begin(StackElement{stack.axis, stack.alignment, stack.spacing});
    environment_.stackAxis = stack.axis;
    addChildren(element, children);
    return element;
  }

  Element make(const KeyedListNode& list, const Views& children) {
    auto element = begin(ListElement{});
    KeyedChildren before(matched_);
    element.children.reserve(children.size());
    for (std::size_t i = 0; i < children.size(); ++i) {
      auto child = childBuilder(before.take(list.keys[i])).build(children[i]);
      child.key = list.keys[i];
      element.children.push_back(std::move(child));
    }
    return element;
  }

  Element make(const TextNode& text, const Views&) {
    return begin(LeafElement{NativeLabel{.text = text.isKey ? localized(text.text) : text.text,
                                         .font = environment_.effectiveFont(),
                                         .color = environment_.effectiveColor(),
                                         .lineLimit = environment_.lineLimit,
                                         .alignment = environment_.textAlignment}});
  }

  Element make(const SymbolNode& symbol, const Views&) {
    return begin(LeafElement{NativeSymbol{.name = symbol.name,
                                          .font = environment_.effectiveFont(),
                                          .color = environment_.effectiveColor()}});
  }

  Element make(const SpacerNode&, const Views&) {
    return begin(SpacerElement{environment_.stackAxis});
  }

  Element make(const DividerNode&, const Views&) {
    return begin(DividerElement{environment_.stackAxis});
  }

  Element make(const ShapeNode& shape, const Views&) { return begin(LeafElement{shape.shape}); }

  Element make(const ToggleNode& toggle, const Views&) {
    const bool isCheckbox = environment_.toggleStyle == ToggleStyle::checkbox;
    if (!isCheckbox && isLabelShown(toggle.key)) {
      return build(HStack({Text(toggle.key), Toggle(toggle.key, toggle.isOn).labelsHidden()}));
    }
    auto element = begin(isCheckbox ? LeafElement{checkbox(toggle)}
                                    : LeafElement{NativeSwitch{.isOn = toggle.isOn.get(),
                                                               .tint = environment_.tint}});
    element.handlers.onToggle = [isOn = toggle.isOn](bool value) { isOn.set(value); };
    return element;
  }

  NativeCheckbox checkbox(const ToggleNode& toggle) const {
    return {.isOn = toggle.isOn.get(),
            .title = environment_.labelsHidden ? "" : localized(toggle.key),
            .font = environment_.effectiveFont(),
            .color = environment_.effectiveColor()};
  }

  Element make(const PickerNode& picker, const Views&) {
    if (isLabelShown(picker.key)) {
      return build(
          HStack({Text(picker.key),
                  SegmentedPicker(picker.key, picker.selection, picker.options).labelsHidden()}));
    }
    NativeSegments segments;
    std::vector<double> tags;
    const double selection = picker.selection.get();
    for (const auto& option : picker.options) {
      if (option.tag == selection && !segments.selected) segments.selected = tags.size();
      segments.labels.push_back(localized(option.key));
      tags.push_back(option.tag);
    }
    auto element = begin(LeafElement{std::move(segments)});
    element.handlers.onSelect = [selected = picker.selection,
                                 tags = std::move(tags)](std::size_t index) {
      if (index < tags.size()) selected.set(tags[index]);
    };
    return element;
  }

  Element make(const ButtonNode& button, const Views& children) {
    const auto& styling = environment_.buttonStyle;
    auto element = begin(ButtonElement{}, styling ? styling->type() : nullptr);
    element.handlers.onPress = button.action;
    if (!environment_.buttonStyle) {
      addChildren(element, children);
      return element;
    }
    const auto style = environment_.buttonStyle->copy();
    StateScope scope(element.memory, resolver_.invalidate_);
    style->connect(scope);
    addChildren(element, {style->makeBody({button.role, children.front()})});
    return element;
  }

  Element make(const ScrollNode&, const Views& children) {
    auto element = begin(ScrollElement{});
    environment_.stackAxis = Axis::vertical;
    addChildren(element, children);
    return element;
  }

  Element make(const ComposedNode& composed, const Views&) {
    auto element = begin(WrapperElement{}, composed.view->type());
    StateScope scope(element.memory, resolver_.invalidate_);
    composed.view->connect(scope);
    addChildren(element, {composed.view->body()});
    return element;
  }

  Element make(const EnvironmentNode& environment, const Views& children) {
    environment.change(environment_);
    return build(children.front());
  }

  Element make(const PaddingNode& padding, const Views& children) {
    return wrap(PaddingElement{padding.top, padding.leading, padding.bottom, padding.trailing},
                children);
  }

  Element make(const FrameNode& frame, const Views& children) {
    return wrap(FrameElement{frame.size}, children);
  }

  Element make(const LayerNode& layer, const Views& children) {
    return wrap(LayerElement{layer.inFront}, children);
  }

  Element make(const OpacityNode& opacity, const Views& children) {
    return wrap(WrapperElement{.opacity = opacity.opacity}, children);
  }

  Element make(const HoverNode& hover, const Views& children) {
    auto element = wrap(WrapperElement{.tracksHover = true}, children);
    element.handlers.onHover = hover.action;
    return element;
  }

  Element make(const HelpNode& help, const Views& children) {
    return wrap(WrapperElement{.help = localized(help.key)}, children);
  }

  Element make(const AccessibilityNode& accessibility, const Views& children) {
    return wrap(WrapperElement{.accessibilityLabel = localized(accessibility.key)}, children);
  }

  Element make(const PopoverNode& popover, const Views& children) {
    auto element = wrap(PopoverElement{popover.arrowEdge}, children);
    element.handlers.onToggle = [isPresented = popover.isPresented](bool value) {
      isPresented.set(value);
    };
    if (!popover.isPresented.get()) return element;
    environment_ = {};
    auto* const before =
        matched_ && matched_->children.size() > 1 ? &matched_->children[1] : nullptr;
    element.children.push_back(childBuilder(before).wrap(WrapperElement{}, {popover.content()}));
    return element;
  }

  Element wrap(ElementContent content, const Views& children) {
    auto element = begin(std::move(content));
    addChildren(element, children);
    return element;
  }

  /// The element itself, with identity and memory of the one before if it is the same.
  Element begin(ElementContent content, const void* type = nullptr) {
    Element element;
    element.type = type ? type : typeOf(content);
    element.content = std::move(content);
    if (previous_ && previous_->type == element.type) {
      matched_ = previous_;
      element.id = matched_->id;
      element.memory = std::move(matched_->memory);
    } else {
      element.id = ++resolver_.lastId_;
    }
    return element;
  }

  void addChildren(Element& element, const Views& children) {
    element.children.reserve(children.size());
    for (const auto& child : children) {
      const auto index = element.children.size();
      auto* const before =
          matched_ && index < matched_->children.size() ? &matched_->children[index] : nullptr;
      element.children.push_back(childBuilder(before).build(child));
    }
  }

  ElementBuilder childBuilder(Element* previous) const {
    return {resolver_, environment_, previous};
  }

  bool isLabelShown(const std::string& key) const {
    return !environment_.labelsHidden && !key.empty();
  }

  std::string localized(const std::string& key) const {
    return resolver_.localize_ ? resolver_.localize_(key) : key;
  }

  Resolver& resolver_;
  Environment environment_;
  Element* previous_;
  Element* matched_ = nullptr;  ///< previous_, if it is the same element
};

Element Resolver::resolve(const View& view, Element* previous) {
  return ElementBuilder(*this, {}, previous).build(view);
}

}  // namespace quillmont
