// UTF-8, strictly: shortest forms, no surrogates, nothing above U+10FFFF.
#pragma once

#include <cstddef>
#include <string_view>

namespace quillmont {

struct Utf8Character {
  std::size_t length = 0;  ///< in bytes; 0 where there is no well-formed character
  char32_t point = 0;
};

/// The character at the front of `bytes`.
Utf8Character firstUtf8Character(std::string_view bytes);

bool isValidUtf8(std::string_view text);

}  // namespace quillmont
