// The figures of the symbols, on a grid of 24 units to a symbol's height. 20 units are as much as
// the letters' size.
#pragma once

#include <QPainterPath>
#include <string>

namespace quillmont {

inline constexpr double kSymbolHeight = 24;
inline constexpr double kSymbolLetterSize = 20;

/// Puts edges where device pixels begin, as far as the size of the symbol allows.
struct SymbolGrid {
  double pixels = 1;  ///< device pixels per unit
  double line = 1;    ///< how thick the symbol's lines are, in units

  /// The place next to `length` at which a pixel begins.
  double at(double length) const;
  /// As thick as `thickness`, in whole pixels, and at least one.
  double thick(double thickness) const;
};

struct SymbolShape {
  double width;  ///< in units
  /// What is to be filled, from the origin to the width and the height.
  QPainterPath (*outline)(const SymbolGrid& grid);
};

/// The symbol of that name; for a name that is not known, an empty square.
const SymbolShape& symbolShape(const std::string& name);

}  // namespace quillmont
