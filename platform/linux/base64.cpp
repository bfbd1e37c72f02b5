#include "platform/linux/base64.h"

#include <array>
#include <cstdint>

namespace quillmont {
namespace {

constexpr std::string_view kDigits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint8_t kNoDigit = 0xFF;

constexpr std::array<std::uint8_t, 256> digitValues() {
  std::array<std::uint8_t, 256> values{};
  values.fill(kNoDigit);
  for (std::size_t i = 0; i < kDigits.size(); ++i) {
    values[static_cast<unsigned char>(kDigits[i])] = static_cast<std::uint8_t>(i);
  }
  return values;
}

constexpr auto kValues = digitValues();

bool isSpace(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

}  // namespace

std::string base64(std::string_view bytes) {
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    const auto group = bytes.substr(at, 3);
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < 3; ++i) {
      bits = (bits << 8) | (i < group.size() ? static_cast<unsigned char>(group[i]) : 0u);
    }
    for (std::size_t i = 0; i < 4; ++i) {
      text += i <= group.size() ? kDigits[(bits >> (18 - 6 * i)) & 0x3F] : '=';
    }
  }
  return text;
}

std::optional<std::string> bytesOfBase64(std::string_view text) {
  std::string bytes;
  bytes.reserve(text.size() / 4 * 3);
  std::uint32_t bits = 0;
  int bitCount = 0;
  std::size_t digits = 0;
  std::size_t padding = 0;
  for (const char c : text) {
    if (isSpace(c)) continue;
    if (c == '=') {
      ++padding;
      continue;
    }
    const auto value = kValues[static_cast<unsigned char>(c)];
    if (value == kNoDigit || padding > 0) return std::nullopt;
    ++digits;
    bits = ((bits << 6) | value) & 0xFFFF;
    bitCount += 6;
    if (bitCount < 8) continue;
    bitCount -= 8;
    bytes += static_cast<char>((bits >> bitCount) & 0xFF);
  }
  const bool looseBits = (bits & ((1u << bitCount) - 1)) != 0;
  if ((digits + padding) % 4 != 0 || padding > 2 || looseBits) return std::nullopt;
  return bytes;
}

}  // namespace quillmont
