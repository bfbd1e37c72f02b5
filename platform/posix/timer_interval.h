// How often a timer can fire.
#pragma once

#include <algorithm>

namespace quillmont {

/// `seconds`, between a tenth of a millisecond and some thirty years, whatever nonsense was asked
/// for.
inline double boundedInterval(double seconds) {
  return seconds > 1e-4 ? std::min(seconds, 1e9) : 1e-4;
}

}  // namespace quillmont
