// Numbers of property lists, held against the C library's reading of them.

#include <bit>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/linux/property_list_numbers.h"
#include "tests/fuzz/fuzzing.h"

namespace quillmont::testing {
namespace {

bool isSame(double a, double b) {
  return std::isnan(a) ? std::isnan(b)
                       : std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

/// The C library allows for more spellings; what we read it reads as the same number.
void checkReal(const std::string& text) {
  const auto real = realOf(text);
  if (!real) return;
  char* end = nullptr;
  const double expected = std::strtod(text.c_str(), &end);
  require(std::strspn(end, " \t\r\n") == std::strlen(end), "a real is a number throughout");
  require(isSame(*real->as<double>(), expected), "a real has its nearest value");
}

void checkInteger(const std::string& text) {
  const auto integer = integerOf(text);
  if (!integer) return;
  const bool hexadecimal = text.find_first_of("xX") != text.npos;
  char* end = nullptr;
  errno = 0;
  if (const auto* value = integer->as<std::int64_t>()) {
    require(*value == std::strtoll(text.c_str(), &end, hexadecimal ? 16 : 10),
            "an integer's value");
  } else {
    require(
        *integer->as<std::uint64_t>() == std::strtoull(text.c_str(), &end, hexadecimal ? 16 : 10),
        "a large integer's value");
  }
  require(errno == 0, "an integer that is read fits");
  require(std::strspn(end, " \t\r\n") == std::strlen(end), "an integer is a number throughout");
}

void checkWritten(double value) {
  const auto back = realOf(realText(value));
  require(back && isSame(*back->as<double>(), value), "a real that is written is read again");
}

void checkWritten(std::uint64_t bits) {
  const auto number = static_cast<std::int64_t>(bits);
  require(integerOf(std::to_string(number)) == PropertyList(number),
          "an integer that is written is read again");
  const auto back = integerOf(std::to_string(bits));
  const bool large = bits >> 63 != 0;
  require(back && (large ? *back == PropertyList(bits) : *back == PropertyList(number)),
          "a large integer that is written is read again");
}

}  // namespace

void tryInput(std::string_view input) {
  const std::string text(input);
  checkReal(text);
  checkInteger(text);
  double value = 0;
  std::memcpy(&value, input.data(), std::min(sizeof value, input.size()));
  checkWritten(value);
  checkWritten(std::bit_cast<std::uint64_t>(value));
}

}  // namespace quillmont::testing
