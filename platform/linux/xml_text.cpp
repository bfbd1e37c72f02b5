#include "platform/linux/xml_text.h"

#include <cstdint>

namespace quillmont {
namespace {

/// The length that the first byte of a character announces, 0 for a byte that starts none.
std::size_t announcedLength(unsigned char first) {
  if (first < 0x80) return 1;
  if (first >= 0xC2 && first <= 0xDF) return 2;
  if (first >= 0xE0 && first <= 0xEF) return 3;
  if (first >= 0xF0 && first <= 0xF4) return 4;
  return 0;
}

bool isXmlCharacter(std::uint32_t code) {
  if (code < 0x20) return code == '\t' || code == '\n' || code == '\r';
  return code < 0xD800 || (code >= 0xE000 && code <= 0xFFFD) ||
         (code >= 0x10000 && code <= 0x10FFFF);
}

}  // namespace

std::size_t xmlCharacterLength(std::string_view bytes) {
  if (bytes.empty()) return 0;
  const auto first = static_cast<unsigned char>(bytes[0]);
  const auto length = announcedLength(first);
  if (length == 0 || length > bytes.size()) return 0;
  if (length == 1) return isXmlCharacter(first) ? 1 : 0;
  std::uint32_t code = first & (0x7Fu >> length);
  for (std::size_t i = 1; i < length; ++i) {
    const auto next = static_cast<unsigned char>(bytes[i]);
    if ((next & 0xC0) != 0x80) return 0;
    code = (code << 6) | (next & 0x3Fu);
  }
  // Two-byte forms are never too long here: 0xC0 and 0xC1 announce nothing.
  if ((length == 3 && code < 0x800) || (length == 4 && code < 0x10000)) return 0;
  return isXmlCharacter(code) ? length : 0;
}

}  // namespace quillmont
