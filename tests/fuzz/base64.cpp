// Data of property lists.

#include "platform/linux/base64.h"

#include <string>

#include "tests/fuzz/fuzzing.h"

namespace quillmont::testing {

void tryInput(std::string_view input) {
  const auto written = base64(input);
  require(written.size() == (input.size() + 2) / 3 * 4, "four digits for three bytes");
  require(bytesOfBase64(written) == input, "bytes that are written are read again");

  const auto bytes = bytesOfBase64(input);
  if (!bytes) return;
  std::string digits(input);
  std::erase_if(
      digits, [](char c) { return std::string_view(" \t\r\n").find(c) != std::string_view::npos; });
  require(base64(*bytes) == digits, "one text stands for bytes, white space aside");
}

}  // namespace quillmont::testing
