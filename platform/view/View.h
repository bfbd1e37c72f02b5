// The words in which a panel is written. A view is a plain value that says what is to be seen; it
// is built anew whenever something changes, and costs little.
//
//   VStack({.spacing = 2}, {
//       VerbatimText(name).font(Font::headline).lineLimit(1),
//       HStack({Circle().fill(Color::green).frame({.width = 6, .height = 6}), Spacer()}),
//   }).padding(Edges::vertical, 8)
#pragma once

#include <concepts>
#include <functional>
#include <initializer_list>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/Popover.h"
#include "platform/view/Color.h"
#include "platform/view/Font.h"
#include "platform/view/NativeView.h"
#include "platform/view/State.h"
#include "platform/view/geometry.h"

namespace quillmont {

class View;
struct ViewNode;

/// A view made of others: a value with `View body() const`, and `void connect(StateScope&)` if it
/// remembers something or watches an object.
template <class T>
concept ComposedView = requires(const T& view) {
  { view.body() } -> std::same_as<View>;
};

enum class ButtonRole { destructive, cancel };

/// What a button style is given to make a button's looks of. `label` is a View.
struct ButtonConfiguration;

/// A value with `View makeBody(const ButtonConfiguration&) const`, and `connect` like a view.
template <class T>
concept ButtonStyle = requires(const T& style, const ButtonConfiguration& configuration) {
  { style.makeBody(configuration) } -> std::same_as<View>;
};

/// A style of its own for every button: what it remembers is that button's.
class AnyButtonStyle {
 public:
  virtual ~AnyButtonStyle() = default;
  virtual const void* type() const = 0;
  virtual std::shared_ptr<AnyButtonStyle> copy() const = 0;
  virtual void connect(StateScope& scope) = 0;
  virtual View makeBody(const ButtonConfiguration& configuration) const = 0;
};

class AnyComposedView {
 public:
  virtual ~AnyComposedView() = default;
  virtual const void* type() const = 0;
  virtual void connect(StateScope& scope) = 0;
  virtual View body() const = 0;
};

enum class ToggleStyle { switchControl, checkbox };

/// Some of the four edges.
enum class Edges { all, horizontal, vertical, top, bottom, leading, trailing };

inline constexpr double kUnbounded = std::numeric_limits<double>::infinity();

/// A frame around a view. A maximum makes the frame take what it is offered up to it, but never
/// less than its content.
struct FrameSize {
  std::optional<double> width = {}, height = {};
  std::optional<double> maxWidth = {}, maxHeight = {};
  Alignment alignment = {};
  bool operator==(const FrameSize&) const = default;
};

class View {
 public:
  template <ComposedView T>
  View(T view);  // NOLINT(google-explicit-constructor): a view stands wherever one is wanted
  explicit View(std::shared_ptr<const ViewNode> node) : node_(std::move(node)) {}

  // Modifiers: each answers a changed view. Those of the first group hold for everything inside.

  View font(Font font) const;
  View fontWeight(FontWeight weight) const;
  View foregroundColor(Color color) const;
  View lineLimit(int lines) const;
  View multilineTextAlignment(TextAlignment alignment) const;
  View toggleStyle(ToggleStyle style) const;
  View tint(Color color) const;
  View labelsHidden() const;
  template <ButtonStyle T>
  View buttonStyle(T style) const;

  View padding(Edges edges, double length) const;
  View padding(double length) const { return padding(Edges::all, length); }
  View frame(FrameSize size) const;
  /// Behind, or in front of, the view: offered its size, centred on it, without a say in it.
  View background(View background) const;
  View background(Color color) const;
  View overlay(View overlay) const;
  View opacity(double opacity) const;
  /// Tells when the pointer comes and when it goes.
  View onHover(std::function<void(bool)> action) const;
  /// A tooltip: a localisable key.
  View help(std::string key) const;
  View accessibilityLabel(std::string key) const;
  /// A popover that hangs from this view while `isPresented` holds; dismissed by the user, it sets
  /// it to false. `arrowEdge` is the edge of this view at which the arrow sits.
  View popover(Binding<bool> isPresented, RectEdge arrowEdge, std::function<View()> content) const;

  const ViewNode& node() const { return *node_; }

 private:
  std::shared_ptr<const ViewNode> node_;
};

struct ButtonConfiguration {
  std::optional<ButtonRole> role;
  View label;
};

using Views = std::vector<View>;

struct VStackLayout {
  HorizontalAlignment alignment = HorizontalAlignment::center;
  std::optional<double> spacing = {};  ///< none: the system's own
};
struct HStackLayout {
  VerticalAlignment alignment = VerticalAlignment::center;
  std::optional<double> spacing = {};
};

View VStack(VStackLayout layout, Views children);
View HStack(HStackLayout layout, Views children);
View HStack(Views children);

/// A localisable key, shown as it is written where there is no translation.
View Text(std::string key);
/// Shown as it is.
View VerbatimText(std::string text);

/// A symbol of the system, in the size and weight of the font.
View Symbol(std::string systemName);

/// Takes all the room that the others in its stack leave over.
View Spacer();

/// A line across its stack.
View Divider();

/// A colour that fills what it is offered.
View Fill(Color color);

/// A figure that fills what it is offered. It stands wherever a view is wanted.
class Shape {
 public:
  explicit Shape(NativeShape shape) : shape_(shape) {}
  Shape fill(Color color) const;
  Shape stroke(Color color, double lineWidth) const;
  Shape shadow(const Shadow& shadow) const;
  operator View() const;  // NOLINT(google-explicit-constructor)

 private:
  NativeShape shape_;
};
Shape Circle();
/// With continuous corners.
Shape RoundedRectangle(double cornerRadius);

/// `key` is its label, localisable.
View Toggle(std::string key, Binding<bool> isOn);

struct PickerOption {
  std::string key;  ///< localisable
  double tag;
};
/// Segments, of which the one is selected whose tag is the selection.
View SegmentedPicker(std::string key, Binding<double> selection, std::vector<PickerOption> options);

View Button(std::function<void()> action, View label, std::optional<ButtonRole> role = {});

/// Only its label.
struct PlainButtonStyle {
  View makeBody(const ButtonConfiguration& configuration) const { return configuration.label; }
};

/// Scrolls its content vertically.
View ScrollView(View content);

struct KeyedView {
  std::string key;
  View view;
};
/// Views that keep their identity by their keys, wherever in the list they come to stand.
View KeyedList(std::vector<KeyedView> views);

/// One view for each element, with the key that `keyOf` tells.
template <class Elements, class KeyOf, class MakeView>
View ForEach(const Elements& elements, KeyOf keyOf, MakeView makeView) {
  std::vector<KeyedView> views;
  views.reserve(elements.size());
  for (const auto& element : elements) views.push_back({keyOf(element), makeView(element)});
  return KeyedList(std::move(views));
}

// How views and button styles of any type become values of one.

View makeComposedView(std::shared_ptr<AnyComposedView> view);
View makeButtonStyled(const View& view, std::shared_ptr<const AnyButtonStyle> style);

template <ComposedView T>
View::View(T view) {
  struct Composed : AnyComposedView {
    explicit Composed(T view_) : view(std::move(view_)) {}
    const void* type() const override {
      static const char mark = 0;
      return &mark;
    }
    void connect(StateScope& scope) override {
      if constexpr (requires(T & v) { v.connect(scope); }) view.connect(scope);
    }
    View body() const override { return view.body(); }
    T view;
  };
  *this = makeComposedView(std::make_shared<Composed>(std::move(view)));
}

template <ButtonStyle T>
View View::buttonStyle(T style) const {
  struct Styled : AnyButtonStyle {
    explicit Styled(T style_) : style(std::move(style_)) {}
    const void* type() const override {
      static const char mark = 0;
      return &mark;
    }
    std::shared_ptr<AnyButtonStyle> copy() const override {
      return std::make_shared<Styled>(style);
    }
    void connect(StateScope& scope) override {
      if constexpr (requires(T & s) { s.connect(scope); }) style.connect(scope);
    }
    View makeBody(const ButtonConfiguration& configuration) const override {
      return style.makeBody(configuration);
    }
    T style;
  };
  return makeButtonStyled(*this, std::make_shared<Styled>(std::move(style)));
}

}  // namespace quillmont
