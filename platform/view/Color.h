// The desktop's colours by their meaning. A host knows what each is in light and in dark.
#pragma once

namespace quillmont {

struct Color {
  enum class Name {
    primary,    ///< text
    secondary,  ///< text of less weight
    red,
    orange,
    green,
    cyan,
    white,
    black,
    clear,
    separator,          ///< lines between areas
    controlBackground,  ///< behind lists and cards
    windowBackground,
  };

  Name name = Name::primary;
  double alpha = 1;  ///< multiplies the alpha that the colour has of its own

  /// The same colour, `factor` times as opaque.
  constexpr Color opacity(double factor) const { return {name, alpha * factor}; }
  bool operator==(const Color&) const = default;

  static const Color primary, secondary, red, orange, green, cyan, white, black, clear, separator,
      controlBackground, windowBackground;
};

inline constexpr Color Color::primary{Color::Name::primary};
inline constexpr Color Color::secondary{Color::Name::secondary};
inline constexpr Color Color::red{Color::Name::red};
inline constexpr Color Color::orange{Color::Name::orange};
inline constexpr Color Color::green{Color::Name::green};
inline constexpr Color Color::cyan{Color::Name::cyan};
inline constexpr Color Color::white{Color::Name::white};
inline constexpr Color Color::black{Color::Name::black};
inline constexpr Color Color::clear{Color::Name::clear};
inline constexpr Color Color::separator{Color::Name::separator};
inline constexpr Color Color::controlBackground{Color::Name::controlBackground};
inline constexpr Color Color::windowBackground{Color::Name::windowBackground};

}  // namespace quillmont
