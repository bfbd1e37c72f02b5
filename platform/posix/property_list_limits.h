// How large a property list may be. The reader and the writer agree, so that what is written can be
// read again.
#pragma once

#include <cstddef>

namespace quillmont {

inline constexpr std::size_t kMaxPropertyListBytes = 64u << 20;
inline constexpr std::size_t kMaxPropertyListValues = 4'000'000;
inline constexpr std::size_t kMaxPropertyListDepth = 256;  ///< arrays and dictionaries in another

}  // namespace quillmont
