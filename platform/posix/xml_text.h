// Which text XML can carry.
#pragma once

#include <cstddef>
#include <string_view>

namespace quillmont {

/// The length in bytes of the first character of `bytes` if it is well-formed UTF-8 (shortest form,
/// no surrogate) and a character of XML 1.0; 0 for anything else and for no bytes at all.
std::size_t xmlCharacterLength(std::string_view bytes);

}  // namespace quillmont
