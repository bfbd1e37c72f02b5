#include "platform/view/native_tree.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/view/native_properties.h"

namespace quillmont {
namespace {

using Nodes = std::vector<NativeNode>;

/// Takes one tree of elements apart. Each call adds the native views of one element to `nodes`,
/// those of a native parent whose corner is at `origin` in the elements' coordinates.
class Flattener {
 public:
  explicit Flattener(double scale) : scale_(scale) {}

  void add(const Element& element, Point origin, Nodes& nodes) const {
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
    return {element.id, {std::move(content)}, frame, element.handlers, {}};
  }

  Point corner(const Element& element) const {
    const Rect frame = rounded(element.frame);
    return {frame.x, frame.y};
  }

  void addChildren(const Element& element, Point origin, Nodes& nodes) const {
    for (const auto& child : element.children) add(child, origin, nodes);
  }

  template <class Arranging>
  void addContent(const Arranging&, const Element& element, Point origin, Nodes& nodes) const {
    addChildren(element, origin, nodes);
  }

  void addContent(const SpacerElement&, const Element&, Point, Nodes&) const {}

  void addContent(const LeafElement& leaf, const Element& element, Point origin,
                  Nodes& nodes) const {
    nodes.push_back(node(element, leaf.content, origin));
  }

  void addContent(const DividerElement&, const Element& element, Point origin, Nodes& nodes) const {
    nodes.push_back(node(element, NativeShape{.fill = Color::separator}, origin));
  }

  void addContent(const LayerElement& layer, const Element& element, Point origin,
                  Nodes& nodes) const {
    add(element.children[layer.inFront ? 0 : 1], origin, nodes);
    add(element.children[layer.inFront ? 1 : 0], origin, nodes);
  }

  void addContent(const ScrollElement&, const Element& element, Point origin, Nodes& nodes) const {
    const auto& content = element.children.front();
    const Rect extent = rounded(content.frame);
    nodes.push_back(node(element, NativeScroll{{extent.width, extent.height}}, origin));
    add(content, {0, 0}, nodes.back().children);
  }

  void addContent(const ButtonElement&, const Element& element, Point origin, Nodes& nodes) const {
    auto button = node(element, NativeButton{}, origin);
    addChildren(element, corner(element), button.children);
    button.properties.accessibilityLabel = textOf(button.children);
    takeHover(button);
    nodes.push_back(std::move(button));
  }

  /// The text that a button shows.
  static std::string textOf(const Nodes& nodes) {
    std::string text;
    for (const auto& child : nodes) {
      const auto* const label = std::get_if<NativeLabel>(&child.properties.content);
      const auto part = label ? label->text : textOf(child.children);
      if (!text.empty() && !part.empty()) text += ' ';
      text += part;
    }
    return text;
  }

  /// A button takes the pointer for its whole label; so it tracks it for its label, too.
  static void takeHover(NativeNode& button) {
    for (auto& child : button.children) {
      if (!child.properties.tracksHover || child.frame.width != button.frame.width ||
          child.frame.height != button.frame.height) {
        continue;
      }
      child.properties.tracksHover = false;
      trackHover(button, std::exchange(child.handlers.onHover, {}));
    }
  }

  /// Whoever has asked for the view's hover before is told first.
  static void trackHover(NativeNode& node, std::function<void(bool)> action) {
    node.properties.tracksHover = true;
    auto& onHover = node.handlers.onHover;
    if (!onHover) {
      onHover = std::move(action);
      return;
    }
    onHover = [first = std::move(onHover), then = std::move(action)](bool isInside) {
      first(isInside);
      then(isInside);
    };
  }

  void addContent(const WrapperElement& wrapper, const Element& element, Point origin,
                  Nodes& nodes) const {
    if (isEmpty(wrapper)) return addChildren(element, origin, nodes);
    auto& carrier = carrierOf(element, wrapper.opacity != 1, origin, nodes);
    auto& properties = carrier.properties;
    properties.opacity = wrapper.opacity;
    if (wrapper.tracksHover) trackHover(carrier, element.handlers.onHover);
    if (!wrapper.help.empty()) properties.help = wrapper.help;
    if (!wrapper.accessibilityLabel.empty()) {
      properties.accessibilityLabel = wrapper.accessibilityLabel;
    }
  }

  static bool isEmpty(const WrapperElement& wrapper) {
    return wrapper.opacity == 1 && !wrapper.tracksHover && wrapper.help.empty() &&
           wrapper.accessibilityLabel.empty();
  }

  void addContent(const PopoverElement& popover, const Element& element, Point origin,
                  Nodes& nodes) const {
    auto& anchor = carrierOf(element, false, origin, nodes);
    if (element.children.size() < 2) return;
    const auto& content = element.children[1];
    NativeNode window{
        content.id, {NativePopover{popover.arrowEdge}}, rounded(content.frame), {}, {}};
    window.handlers.onToggle = element.handlers.onToggle;
    add(content, {0, 0}, window.children);
    anchor.children.push_back(std::move(window));
  }

  /// The view that bears what a modifier adds to the element's first child: its only native view,
  /// if that is a control in the same frame, else a group around it.
  NativeNode& carrierOf(const Element& element, bool asGroup, Point origin, Nodes& nodes) const {
    Nodes inner;
    add(element.children.front(), corner(element), inner);
    if (!asGroup && inner.size() == 1 && isControl(inner[0].properties) && inner[0].frame.x == 0 &&
        inner[0].frame.y == 0 && sameSize(inner[0].frame, rounded(element.frame))) {
      inner[0].frame = node(element, NativeGroup{}, origin).frame;
      nodes.push_back(std::move(inner[0]));
    } else {
      nodes.push_back(node(element, NativeGroup{}, origin));
      nodes.back().handlers = {};
      nodes.back().children = std::move(inner);
    }
    return nodes.back();
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
