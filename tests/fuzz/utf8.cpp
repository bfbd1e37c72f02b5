// Which bytes are text, held against the table of well-formed byte sequences of the Unicode
// standard.

#include "platform/utf8.h"

#include <array>
#include <string>

#include "platform/posix/log_text.h"
#include "platform/posix/xml_text.h"
#include "tests/fuzz/fuzzing.h"

namespace quillmont::testing {
namespace {

struct Range {
  unsigned char first, last;
};
struct Row {
  std::size_t length;
  std::array<Range, 4> bytes;
};
constexpr Range kTail = {0x80, 0xBF};
constexpr std::array<Row, 9> kWellFormed = {{
    {1, {{{0x00, 0x7F}}}},
    {2, {{{0xC2, 0xDF}, kTail}}},
    {3, {{{0xE0, 0xE0}, {0xA0, 0xBF}, kTail}}},
    {3, {{{0xE1, 0xEC}, kTail, kTail}}},
    {3, {{{0xED, 0xED}, {0x80, 0x9F}, kTail}}},
    {3, {{{0xEE, 0xEF}, kTail, kTail}}},
    {4, {{{0xF0, 0xF0}, {0x90, 0xBF}, kTail, kTail}}},
    {4, {{{0xF1, 0xF3}, kTail, kTail, kTail}}},
    {4, {{{0xF4, 0xF4}, {0x80, 0x8F}, kTail, kTail}}},
}};

bool fits(const Row& row, std::string_view bytes) {
  if (bytes.size() < row.length) return false;
  for (std::size_t i = 0; i < row.length; ++i) {
    const auto byte = static_cast<unsigned char>(bytes[i]);
    if (byte < row.bytes[i].first || byte > row.bytes[i].last) return false;
  }
  return true;
}

std::size_t lengthByTable(std::string_view bytes) {
  for (const auto& row : kWellFormed) {
    if (fits(row, bytes)) return row.length;
  }
  return 0;
}

bool isValidByTable(std::string_view text) {
  while (!text.empty()) {
    const auto length = lengthByTable(text);
    if (length == 0) return false;
    text.remove_prefix(length);
  }
  return true;
}

std::string encoded(char32_t point) {
  const auto byte = [](char32_t bits) { return static_cast<char>(bits); };
  const auto tail = [&](int shift) { return byte(0x80 | ((point >> shift) & 0x3F)); };
  if (point < 0x80) return {byte(point)};
  if (point < 0x800) return {byte(0xC0 | point >> 6), tail(0)};
  if (point < 0x10000) return {byte(0xE0 | point >> 12), tail(6), tail(0)};
  return {byte(0xF0 | point >> 18), tail(12), tail(6), tail(0)};
}

}  // namespace

void tryInput(std::string_view input) {
  require(isValidUtf8(input) == isValidByTable(input), "text is what the standard says");
  for (auto rest = input; !rest.empty(); rest.remove_prefix(1)) {
    const auto character = firstUtf8Character(rest);
    require(character.length == lengthByTable(rest), "a character's length is the standard's");
    if (character.length == 0) continue;
    require(encoded(character.point) == rest.substr(0, character.length), "its number is its own");
    const auto carried = xmlCharacterLength(rest);
    require(carried == 0 || carried == character.length, "XML carries whole characters");
  }
  const auto line = textOfOneLine(input);
  require(line.size() <= 4 * input.size(), "a line of the log grows within bounds");
  require(std::none_of(line.begin(), line.end(),
                       [](char c) { return (c >= 0 && c < 0x20) || c == 0x7F; }),
          "a line of the log holds no control character");
  require(isValidUtf8(line) == isValidUtf8(input), "text stays text in the log");
}

}  // namespace quillmont::testing
