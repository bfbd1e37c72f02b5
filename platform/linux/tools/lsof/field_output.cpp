#include "platform/linux/tools/lsof/field_output.h"

#include <algorithm>
#include <cstddef>

#include "platform/utf8.h"

namespace quillmont {
namespace {

/// Beyond ASCII: control characters, line and paragraph separator.
bool isUnprintable(char32_t point) {
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
    const auto character = firstUtf8Character(name);
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
