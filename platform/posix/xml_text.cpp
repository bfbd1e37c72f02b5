#include "platform/posix/xml_text.h"

#include "platform/utf8.h"

namespace quillmont {
namespace {

bool isXmlCharacter(char32_t point) {
  if (point < 0x20) return point == '\t' || point == '\n' || point == '\r';
  return point != 0xFFFE && point != 0xFFFF;
}

}  // namespace

std::size_t xmlCharacterLength(std::string_view bytes) {
  const auto character = firstUtf8Character(bytes);
  return isXmlCharacter(character.point) ? character.length : 0;
}

}  // namespace quillmont
