#include "platform/linux/tools/lsof/field_output.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace quillmont {
namespace {

/// A character of a name: its length in bytes and its code point; of length 0 if the bytes are no
/// valid UTF-8.
struct Character {
  std::size_t length = 0;
  unsigned point = 0;
};

Character firstCharacter(std::string_view bytes) {
  constexpr std::array<unsigned, 5> kSmallest = {0, 0, 0x80, 0x800, 0x10000};
  const auto byte = [bytes](std::size_t at) { return static_cast<unsigned char>(bytes[at]); };
  const unsigned first = byte(0);
  if (first < 0x80) return {1, first};
  const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
  if (first < 0xC2 || first > 0xF4 || bytes.size() < length) return {};
  unsigned point = first & (0x7Fu >> length);
  for (std::size_t at = 1; at < length; ++at) {
    if ((byte(at) & 0xC0u) != 0x80) return {};
    point = point << 6 | (byte(at) & 0x3Fu);
  }
  const bool surrogate = point >= 0xD800 && point <= 0xDFFF;
  if (point < kSmallest[length] || point > 0x10FFFF || surrogate) return {};
  return {length, point};
}

/// Beyond ASCII: control characters, line and paragraph separator.
bool isUnprintable(unsigned point) {
  return (point >= 0x7F && point < 0xA0) || point == 0x2028 || point == 0x2029;
}

void appendHexadecimal(std::string& output, std::string_view bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  for (const char character : bytes) {
    const auto byte = static_cast<unsigned char>(character);
    output.append({'\\', 'x', kDigits[byte >> 4], kDigits[byte & 15]});
  }
}

void appendControl(std::string& output, char control) {
  constexpr std::string_view kControls = "\b\f\n\r\t";
  constexpr std::string_view kLetters = "bfnrt";
  const auto at = kControls.find(control);
  if (at != kControls.npos) {
    output.append({'\\', kLetters[at]});
  } else {
    output.append({'^', static_cast<char>(control + '@')});
  }
}

void appendValue(std::string& output, std::string_view name) {
  while (!name.empty()) {
    const auto character = firstCharacter(name);
    const auto bytes = name.substr(0, std::max<std::size_t>(character.length, 1));
    name.remove_prefix(bytes.size());
    if (character.length == 0 || isUnprintable(character.point)) {
      appendHexadecimal(output, bytes);
    } else if (character.point < 0x20) {
      appendControl(output, bytes.front());
    } else if (character.point == '\\') {
      output += "\\\\";
    } else {
      output += bytes;
    }
  }
}

}  // namespace

std::string fieldValue(std::string_view name) {
  std::string value;
  appendValue(value, name);
  return value;
}

void appendField(std::string& output, char tag, std::string_view value) {
  output += tag;
  appendValue(output, value);
  output += '\n';
}

}  // namespace quillmont
