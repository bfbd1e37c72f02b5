#include "platform/view/View.h"

#include "platform/view/ViewNode.h"

namespace quillmont {
namespace {

template <class Node>
View makeView(Node node) {
  return View(std::make_shared<const NodeOf<Node>>(std::move(node)));
}

template <class Change>
View inEnvironment(const View& view, Change change) {
  return makeView(EnvironmentNode{view, std::move(change)});
}

bool includes(Edges edges, Edges axis, Edges edge) {
  return edges == Edges::all || edges == axis || edges == edge;
}

}  // namespace

View View::font(Font font) const {
  return inEnvironment(*this, [font](Environment& environment) { environment.font = font; });
}

View View::fontWeight(FontWeight weight) const {
  return inEnvironment(*this,
                       [weight](Environment& environment) { environment.fontWeight = weight; });
}

View View::foregroundColor(Color color) const {
  return inEnvironment(*this,
                       [color](Environment& environment) { environment.foregroundColor = color; });
}

View View::lineLimit(int lines) const {
  return inEnvironment(*this, [lines](Environment& environment) { environment.lineLimit = lines; });
}

View View::multilineTextAlignment(TextAlignment alignment) const {
  return inEnvironment(
      *this, [alignment](Environment& environment) { environment.textAlignment = alignment; });
}

View View::toggleStyle(ToggleStyle style) const {
  return inEnvironment(*this,
                       [style](Environment& environment) { environment.toggleStyle = style; });
}

View View::tint(Color color) const {
  return inEnvironment(*this, [color](Environment& environment) { environment.tint = color; });
}

View View::labelsHidden() const {
  return inEnvironment(*this, [](Environment& environment) { environment.labelsHidden = true; });
}

View View::padding(Edges edges, double length) const {
  const auto at = [&](Edges axis, Edges edge) { return includes(edges, axis, edge) ? length : 0; };
  return makeView(
      PaddingNode{*this, at(Edges::vertical, Edges::top), at(Edges::horizontal, Edges::leading),
                  at(Edges::vertical, Edges::bottom), at(Edges::horizontal, Edges::trailing)});
}

View View::frame(FrameSize size) const {
  return makeView(FrameNode{*this, size});
}

View View::background(View background) const {
  return makeView(LayerNode{*this, std::move(background), false});
}

View View::background(Color color) const {
  return background(Fill(color));
}

View View::overlay(View overlay) const {
  return makeView(LayerNode{*this, std::move(overlay), true});
}

View View::opacity(double opacity) const {
  return makeView(OpacityNode{*this, opacity});
}

View View::onHover(std::function<void(bool)> action) const {
  return makeView(HoverNode{*this, std::move(action)});
}

View View::help(std::string key) const {
  return makeView(HelpNode{*this, std::move(key)});
}

View View::accessibilityLabel(std::string key) const {
  return makeView(AccessibilityNode{*this, std::move(key)});
}

View View::popover(Binding<bool> isPresented, RectEdge arrowEdge,
                   std::function<View()> content) const {
  return makeView(PopoverNode{*this, std::move(isPresented), arrowEdge, std::move(content)});
}

View VStack(VStackLayout layout, Views children) {
  const Alignment alignment{layout.alignment, VerticalAlignment::center};
  return makeView(StackNode{Axis::vertical, alignment, layout.spacing, std::move(children)});
}

View HStack(HStackLayout layout, Views children) {
  const Alignment alignment{HorizontalAlignment::center, layout.alignment};
  return makeView(StackNode{Axis::horizontal, alignment, layout.spacing, std::move(children)});
}

View HStack(Views children) {
  return HStack(HStackLayout{}, std::move(children));
}

View Text(std::string key) {
  return makeView(TextNode{std::move(key), true});
}

View VerbatimText(std::string text) {
  return makeView(TextNode{std::move(text), false});
}

View Symbol(std::string systemName) {
  return makeView(SymbolNode{std::move(systemName)});
}

View Spacer() {
  return makeView(SpacerNode{});
}

View Divider() {
  return makeView(DividerNode{});
}

View Fill(Color color) {
  return makeView(ShapeNode{NativeShape{.fill = color}});
}

Shape Shape::fill(Color color) const {
  Shape result = *this;
  result.shape_.fill = color;
  return result;
}

Shape Shape::stroke(Color color, double lineWidth) const {
  Shape result = *this;
  result.shape_.stroke = Stroke{color, lineWidth};
  return result;
}

Shape Shape::shadow(const Shadow& shadow) const {
  Shape result = *this;
  result.shape_.shadow = shadow;
  return result;
}

Shape::operator View() const {
  return makeView(ShapeNode{shape_});
}

Shape Circle() {
  return Shape(NativeShape{.kind = NativeShape::Kind::circle});
}

Shape RoundedRectangle(double cornerRadius) {
  return Shape(
      NativeShape{.kind = NativeShape::Kind::roundedRectangle, .cornerRadius = cornerRadius});
}

View Toggle(std::string key, Binding<bool> isOn) {
  return makeView(ToggleNode{std::move(key), std::move(isOn)});
}

View SegmentedPicker(std::string key, Binding<double> selection,
                     std::vector<PickerOption> options) {
  return makeView(PickerNode{std::move(key), std::move(selection), std::move(options)});
}

View Button(std::function<void()> action, View label, std::optional<ButtonRole> role) {
  return makeView(ButtonNode{std::move(label), std::move(action), role});
}

View ScrollView(View content) {
  return makeView(ScrollNode{std::move(content)});
}

View KeyedList(std::vector<KeyedView> views) {
  KeyedListNode list;
  list.keys.reserve(views.size());
  list.children.reserve(views.size());
  for (auto& keyed : views) {
    list.keys.push_back(std::move(keyed.key));
    list.children.push_back(std::move(keyed.view));
  }
  return makeView(std::move(list));
}

View makeComposedView(std::shared_ptr<AnyComposedView> view) {
  return makeView(ComposedNode{std::move(view)});
}

View makeButtonStyled(const View& view, std::shared_ptr<const AnyButtonStyle> style) {
  return inEnvironment(view, [style = std::move(style)](Environment& environment) {
    environment.buttonStyle = style;
  });
}

}  // namespace quillmont
