// The measures of the controls, shared by those who lay them out and those who paint them.
#pragma once

#include "platform/view/Font.h"

namespace quillmont {

inline constexpr double kCheckboxSide = 14;
inline constexpr double kCheckboxGap = 6;  ///< between the box and its title

inline constexpr Font kSegmentFont = Font::system(12);
inline constexpr Font kSelectedSegmentFont = Font::system(12, FontWeight::medium);
inline constexpr double kSegmentPadding = 10;  ///< on each side of a label
inline constexpr double kSegmentsHeight = 24;

}  // namespace quillmont
