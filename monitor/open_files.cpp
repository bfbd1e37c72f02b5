#include "monitor/open_files.h"

#include <algorithm>
#include <cstddef>
#include <unordered_set>

namespace quillmont {
namespace {

/// Length of the well-formed UTF-8 character at the start of `text`, or 0. No overlong forms, no
/// surrogates, nothing above U+10FFFF.
std::size_t characterLength(std::string_view text) {
  const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
  const auto follows = [&](std::size_t at, unsigned low, unsigned high) {
    return at < text.size() && byte(at) >= low && byte(at) <= high;
  };
  const auto tail = [&](std::size_t at) { return follows(at, 0x80, 0xBF); };
  const unsigned first = byte(0);
  if (first < 0x80) return 1;
  if (first >= 0xC2 && first <= 0xDF) return tail(1) ? 2 : 0;
  if (first >= 0xE0 && first <= 0xEF) {
    const unsigned low = first == 0xE0 ? 0xA0 : 0x80;
    const unsigned high = first == 0xED ? 0x9F : 0xBF;
    return follows(1, low, high) && tail(2) ? 3 : 0;
  }
  if (first >= 0xF0 && first <= 0xF4) {
    const unsigned low = first == 0xF0 ? 0x90 : 0x80;
    const unsigned high = first == 0xF4 ? 0x8F : 0xBF;
    return follows(1, low, high) && tail(2) && tail(3) ? 4 : 0;
  }
  return 0;
}

bool isValidUtf8(std::string_view text) {
  while (!text.empty()) {
    const auto length = characterLength(text);
    if (length == 0) return false;
    text.remove_prefix(length);
  }
  return true;
}

/// Length of the newline character that begins at `at`, or 0: line feed, vertical tab, form feed,
/// carriage return, next line (U+0085), line and paragraph separator (U+2028, U+2029).
std::size_t newlineLength(std::string_view text, std::size_t at) {
  const auto character = static_cast<unsigned char>(text[at]);
  if (character >= 0x0A && character <= 0x0D) return 1;
  if (character < 0x80) return 0;
  const auto rest = text.substr(at);
  if (rest.starts_with("\xC2\x85")) return 2;
  if (rest.starts_with("\xE2\x80\xA8") || rest.starts_with("\xE2\x80\xA9")) return 3;
  return 0;
}

/// Cuts the first line off `text`, which must not be empty.
std::string_view takeLine(std::string_view& text) {
  std::size_t at = 0;
  std::size_t newline = 0;
  while (at < text.size() && (newline = newlineLength(text, at)) == 0) ++at;
  const auto line = text.substr(0, at);
  text.remove_prefix(std::min(text.size(), at + newline));
  return line;
}

/// The lower-case form, as far as it can meet an ASCII prefix: beside A to Z only the Kelvin sign
/// (U+212A) has an ASCII letter for its lower case.
std::string foldedForPrefixes(std::string_view name) {
  constexpr std::string_view kKelvinSign = "\xE2\x84\xAA";
  std::string folded;
  folded.reserve(name.size());
  while (!name.empty()) {
    if (name.starts_with(kKelvinSign)) {
      folded += 'k';
      name.remove_prefix(kKelvinSign.size());
      continue;
    }
    const char character = name.front();
    const bool upper = character >= 'A' && character <= 'Z';
    folded += upper ? static_cast<char>(character - 'A' + 'a') : character;
    name.remove_prefix(1);
  }
  return folded;
}

bool isIgnoredService(std::string_view name, std::span<const std::string> prefixes) {
  const auto folded = foldedForPrefixes(name);
  return std::any_of(prefixes.begin(), prefixes.end(),
                     [&](const std::string& prefix) { return folded.starts_with(prefix); });
}

}  // namespace

const std::vector<std::string>& ignoredServicePrefixes() {
  static const auto* const prefixes = new std::vector<std::string>{
      "mds",     "fsevents",   "spotlight",  "corespotlight", "quicklook",
      "cloudd",  "dbfsevents", "livefiles",  "hazel",         "sharedfilelist",
      "dropbox", "onedrive",   "googledrive"};
  return *prefixes;
}

std::vector<std::string> countedProcessNames(std::string_view output, std::string_view myPid,
                                             std::span<const std::string> ignoredPrefixes) {
  if (!isValidUtf8(output)) return {};
  std::vector<std::string> names;
  std::unordered_set<std::string_view> seen;
  std::string_view pid;
  while (!output.empty()) {
    const auto line = takeLine(output);
    if (line.empty()) continue;
    const auto value = line.substr(1);
    if (line.front() == 'p') pid = value;
    if (line.front() != 'c' || pid == myPid || value == "lsof") continue;
    if (seen.contains(value) || isIgnoredService(value, ignoredPrefixes)) continue;
    seen.insert(value);
    names.emplace_back(value);
  }
  return names;
}

}  // namespace quillmont
