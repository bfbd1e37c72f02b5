// The system's font in a size and a weight, and the text styles that the panel uses.
#pragma once

#include <cmath>

namespace quillmont {

enum class FontWeight { regular = 400, medium = 500, semibold = 600, bold = 700 };

struct Font {
  double size = 13;  ///< points
  FontWeight weight = FontWeight::regular;

  static constexpr Font system(double size, FontWeight weight = FontWeight::regular) {
    return {size, weight};
  }
  bool operator==(const Font&) const = default;

  static const Font body, headline, subheadline, caption;
};

inline constexpr Font Font::body{13, FontWeight::regular};
inline constexpr Font Font::headline{13, FontWeight::bold};
inline constexpr Font Font::subheadline{11, FontWeight::regular};
inline constexpr Font Font::caption{10, FontWeight::regular};

/// From one line of a text to the next, in whole points. Letters that the system's font has to
/// borrow from another one do not change it.
inline double lineHeight(const Font& font) {
  return std::ceil(1.22 * font.size);
}

/// How the lines of a text lie within its own width.
enum class TextAlignment { leading, center, trailing };

}  // namespace quillmont
