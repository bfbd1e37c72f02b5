// Points, sizes and rectangles of the panel. Lengths are in points; y grows downwards.
#pragma once

#include <optional>

namespace quillmont {

struct Point {
  double x = 0, y = 0;
  bool operator==(const Point&) const = default;
};

struct Size {
  double width = 0, height = 0;
  bool operator==(const Size&) const = default;
};

struct Rect {
  double x = 0, y = 0, width = 0, height = 0;
  double maxX() const { return x + width; }
  double maxY() const { return y + height; }
  bool operator==(const Rect&) const = default;
};

/// What a parent offers a child. No length: the child's ideal one is asked for.
struct ProposedSize {
  std::optional<double> width, height;
  bool operator==(const ProposedSize&) const = default;
};

enum class Axis { horizontal, vertical };

/// Where a view lies across a stack or within a frame that is larger than itself.
enum class HorizontalAlignment { leading, center, trailing };
enum class VerticalAlignment { top, center, bottom };

struct Alignment {
  HorizontalAlignment horizontal = HorizontalAlignment::center;
  VerticalAlignment vertical = VerticalAlignment::center;
  bool operator==(const Alignment&) const = default;
  static const Alignment center, leading, trailing;
};

inline constexpr Alignment Alignment::center{};
inline constexpr Alignment Alignment::leading{HorizontalAlignment::leading,
                                              VerticalAlignment::center};
inline constexpr Alignment Alignment::trailing{HorizontalAlignment::trailing,
                                               VerticalAlignment::center};

}  // namespace quillmont
