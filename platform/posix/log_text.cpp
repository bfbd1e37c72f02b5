#include "platform/posix/log_text.h"

namespace quillmont {

std::string textOfOneLine(std::string_view text) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string line;
  line.reserve(text.size());
  for (const char character : text) {
    const auto byte = static_cast<unsigned char>(character);
    if (character == '\n') {
      line += "\\n";
    } else if (byte < 0x20 || byte == 0x7f) {
      line += {'\\', 'x', kDigits[byte >> 4], kDigits[byte & 15]};
    } else {
      line += character;
    }
  }
  return line;
}

}  // namespace quillmont
