#include "platform/utf8.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace quillmont {
namespace {

bool isAscii(char byte) {
  return static_cast<unsigned char>(byte) < 0x80;
}

/// Passes the ASCII characters at the front, eight at a time as long as there are as many.
void dropAscii(std::string_view& text) {
  constexpr std::uint64_t kHighBits = 0x8080808080808080;
  std::uint64_t eight = 0;
  while (text.size() >= sizeof eight) {
    std::memcpy(&eight, text.data(), sizeof eight);
    if ((eight & kHighBits) != 0) break;
    text.remove_prefix(sizeof eight);
  }
  const auto other = std::find_if_not(text.begin(), text.end(), isAscii);
  text.remove_prefix(static_cast<std::size_t>(other - text.begin()));
}

/// The length that the first byte of a character announces, 0 for a byte that starts none.
std::size_t announcedLength(unsigned first) {
  if (first < 0x80) return 1;
  if (first >= 0xC2 && first <= 0xDF) return 2;
  if (first >= 0xE0 && first <= 0xEF) return 3;
  if (first >= 0xF0 && first <= 0xF4) return 4;
  return 0;
}

}  // namespace

Utf8Character firstUtf8Character(std::string_view bytes) {
  constexpr std::array<char32_t, 5> kSmallest = {0, 0, 0x80, 0x800, 0x10000};
  if (bytes.empty()) return {};
  const unsigned first = static_cast<unsigned char>(bytes.front());
  const auto length = announcedLength(first);
  if (length == 0 || length > bytes.size()) return {};
  char32_t point = length == 1 ? first : first & (0x7Fu >> length);
  for (const char byte : bytes.substr(1, length - 1)) {
    const unsigned next = static_cast<unsigned char>(byte);
    if ((next & 0xC0u) != 0x80u) return {};
    point = point << 6 | (next & 0x3Fu);
  }
  const bool surrogate = point >= 0xD800 && point <= 0xDFFF;
  if (point < kSmallest[length] || surrogate || point > 0x10FFFF) return {};
  return {length, point};
}

bool isValidUtf8(std::string_view text) {
  while (!text.empty()) {
    dropAscii(text);
    const auto length = firstUtf8Character(text).length;
    if (length == 0) return text.empty();
    text.remove_prefix(length);
  }
  return true;
}

}  // namespace quillmont
