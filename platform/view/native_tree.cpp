#include "platform/view/native_tree.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

#include "platform/view/native_properties.h"

namespace quillmont {
namespace {

/// Takes one tree of elements apart. Each call adds the native views of one element to `nodes`,
/// those of a native parent whose corner is at `origin` in the elements' coordinates.
class Flattener {
 public:
  explicit Flattener(double scale) : scale_(scale) {}

  void add(const Element& element, Point origin, NativeNodes& nodes) const {
    if (element.native && element.nativeOrigin == origin) {
      nodes.push_back(element.native);
      return;
    }
    std::visit([&](const auto& content) { addContent(content, element, origin, nodes); },
               element.content);
  }

  /// What begins and ends where the exact frame does, to the nearest pixel.
  Rect rounded(const Rect& frame) const {
    const double x = pixel(frame.x), y = pixel(frame.y);
    return {x, y, pixel(frame.maxX()) - x, pixel(frame.maxY()) - y};
  }

 private:
  /// Halves go up, also those that reckoning has left a bit too small: both ends of a view that is
  /// whole pixels long go the same way.
  double pixel(double length) const {
    constexpr double kInexact = 1.0 / 1024;
    return std::floor(length * scale_ + 0.5 + kInexact) / scale_;
  }

  NativeNode node(const Element& element, NativeContent content, Point origin) const {
    Rect frame = rounded(element.frame);
    frame.x -= origin.x;
    frame.y -= origin.y;
    return {element.id, {std::move(content)}, frame, handlersOf(element), {}};
  }

  static std::vector<std::shared_ptr<const ViewHandlers>> handlersOf(const Element& element) {
    if (!element.handlers) return {};
    return {element.handlers};
  }

  /// All that the element becomes is this one view.
  static void addOnly(NativeNode node, const Element& element, Point origin, NativeNodes& nodes) {
    element.native = std::make_shared<const NativeNode>(std::move(node));
    element.nativeOrigin = origin;
    nodes.push_back(element.native);
  }

  Point corner(const Element& element) const {
    const Rect frame = rounded(element.frame);
    return {frame.x, frame.y};
  }

  void addChildren(const Element& element, Point origin, NativeNodes& nodes) const {
    for (const auto& child : element.children) add(child, origin, nodes);
  }

  template <class Arranging>
  void addContent(const Arranging&, const Element& element, Point origin,
                  NativeNodes& nodes) const {
    addChildren(element, origin, nodes);
  }

  void addContent(const SpacerElement&, const Element&, Point, NativeNodes&) const {}

  void addContent(const LeafElement& leaf, const Element& element, Point origin,
                  NativeNodes& nodes) const {
    addOnly(node(element, leaf.content, origin), element, origin, nodes);
  }

  void addContent(const DividerElement&, const Element& element, Point origin,
                  NativeNodes& nodes) const {
    addOnly(node(element, NativeShape{.fill = Color::separator}, origin), element, origin, nodes);
  }

  void addContent(const LayerElement& layer, const Element& element, Point origin,
                  NativeNodes& nodes) const {
    add(element.children[layer.inFront ? 0 : 1], origin, nodes);
    add(element.children[layer.inFront ? 1 : 0], origin, nodes);
  }

  void addContent(const ScrollElement&, const Element& element, Point origin,
                  NativeNodes& nodes) const {
    const auto& content = element.children.front();
    const Rect extent = rounded(content.frame);
    auto scroll = node(element, NativeScroll{{extent.width, extent.height}}, origin);
    add(content, {0, 0}, scroll.children);
    addOnly(std::move(scroll), element, origin, nodes);
  }

  void addContent(const ButtonElement&, const Element& element, Point origin,
                  NativeNodes& nodes) const {
    auto button = node(element, NativeButton{}, origin);
    addChildren(element, corner(element), button.children);
    button.properties.accessibilityLabel = textOf(button.children);
    takeHover(button);
    addOnly(std::move(button), element, origin, nodes);
  }

  /// The text that a button shows.
  static std::string textOf(const NativeNodes& nodes) {
    std::string text;
    for (const auto& child : nodes) {
      const auto* const label = std::get_if<NativeLabel>(&child->properties.content);
      const auto part = label ? label->text : textOf(child->children);
      if (!text.empty() && !part.empty()) text += ' ';
      text += part;
    }
    return text;
  }

  /// A button takes the pointer for its whole label; so it tracks it for its label, too.
  static void takeHover(NativeNode& button) {
    for (auto& child : button.children) {
      if (!child->properties.tracksHover || child->frame.width != button.frame.width ||
          child->frame.height != button.frame.height) {
        continue;
      }
      NativeNode left = *child;
      left.properties.tracksHover = false;
      const auto hovering = std::stable_partition(left.handlers.begin(), left.handlers.end(),
                                                  [](const auto& any) { return !any->onHover; });
      button.properties.tracksHover = true;
      button.handlers.insert(button.handlers.end(), hovering, left.handlers.end());
      left.handlers.erase(hovering, left.handlers.end());
      child = std::make_shared<const NativeNode>(std::move(left));
    }
  }

  void addContent(const WrapperElement& wrapper, const Element& element, Point origin,
                  NativeNodes& nodes) const {
    if (isEmpty(wrapper)) return addChildren(element, origin, nodes);
    auto carrier = carrierOf(element, wrapper.opacity != 1, origin);
    auto& properties = carrier.properties;
    properties.opacity = wrapper.opacity;
    if (wrapper.tracksHover) {
      properties.tracksHover = true;
      carrier.handlers.push_back(element.handlers);
    }
    if (!wrapper.help.empty()) properties.help = wrapper.help;
    if (!wrapper.accessibilityLabel.empty()) {
      properties.accessibilityLabel = wrapper.accessibilityLabel;
    }
    addOnly(std::move(carrier), element, origin, nodes);
  }

  static bool isEmpty(const WrapperElement& wrapper) {
    return wrapper.opacity == 1 && !wrapper.tracksHover && wrapper.help.empty() &&
           wrapper.accessibilityLabel.empty();
  }

  void addContent(const PopoverElement& popover, const Element& element, Point origin,
                  NativeNodes& nodes) const {
    auto anchor = carrierOf(element, false, origin);
    if (element.children.size() > 1) {
      const auto& content = element.children[1];
      NativeNode window{content.id,
                        {NativePopover{popover.arrowEdge}},
                        rounded(content.frame),
                        handlersOf(element),
                        {}};
      add(content, {0, 0}, window.children);
      anchor.children.push_back(std::make_shared<const NativeNode>(std::move(window)));
    }
    addOnly(std::move(anchor), element, origin, nodes);
  }

  /// The view that bears what a modifier adds to the element's first child: its only native view,
  /// if that is a control in the same frame, else a group around it.
  NativeNode carrierOf(const Element& element, bool asGroup, Point origin) const {
    NativeNode group = node(element, NativeGroup{}, origin);
    group.handlers = {};
    add(element.children.front(), corner(element), group.children);
    if (asGroup || group.children.size() != 1) return group;
    const auto& only = *group.children.front();
    if (!isControl(only.properties) || only.frame.x != 0 || only.frame.y != 0 ||
        !sameSize(only.frame, group.frame)) {
      return group;
    }
    NativeNode control = only;
    control.frame = group.frame;
    return control;
  }

  static bool sameSize(const Rect& left, const Rect& right) {
    return left.width == right.width && left.height == right.height;
  }

  double scale_;
};

}  // namespace

NativeNode nativeTree(const Element& root, double scale) {
  const Flattener flattener(scale);
  NativeNode result;
  result.frame = flattener.rounded(root.frame);
  flattener.add(root, {0, 0}, result.children);
  return result;
}

}  // namespace quillmont
