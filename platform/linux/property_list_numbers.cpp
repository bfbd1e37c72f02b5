#include "platform/linux/property_list_numbers.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

namespace quillmont {
namespace {

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kSpace = " \t\r\n";
  const auto start = text.find_first_not_of(kSpace);
  if (start == std::string_view::npos) return {};
  return text.substr(start, text.find_last_not_of(kSpace) - start + 1);
}

template <class Number, class... Format>
std::optional<Number> wholeText(std::string_view text, Format... format) {
  Number number{};
  const auto* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number, format...);
  if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
  return number;
}

}  // namespace

std::optional<PropertyList> integerOf(std::string_view text) {
  text = trimmed(text);
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
  if (hexadecimal) text.remove_prefix(2);
  const auto magnitude = wholeText<std::uint64_t>(text, hexadecimal ? 16 : 10);
  if (!magnitude) return std::nullopt;
  constexpr auto kLargest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  if (negative) {
    if (*magnitude > kLargest + 1) return std::nullopt;
    return PropertyList(static_cast<std::int64_t>(0 - *magnitude));
  }
  if (*magnitude > kLargest) return PropertyList(*magnitude);
  return PropertyList(static_cast<std::int64_t>(*magnitude));
}

std::optional<PropertyList> realOf(std::string_view text) {
  text = trimmed(text);
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (text.starts_with('-')) return std::nullopt;
  }
  // "nan(...)" is a spelling of C alone.
  if (text.ends_with(')')) return std::nullopt;
  const auto number = wholeText<double>(text, std::chars_format::general);
  if (!number) return std::nullopt;
  return PropertyList(*number);
}

std::string realText(double value) {
  if (std::isnan(value)) return "nan";
  if (std::isinf(value)) return value > 0 ? "+infinity" : "-infinity";
  std::array<char, 32> buffer;
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
  return std::string(buffer.data(), result.ptr);
}

}  // namespace quillmont
