#include "monitor/open_files.h"

#include <algorithm>
#include <cstddef>
#include <unordered_set>

#include "platform/utf8.h"

namespace quillmont {
namespace {

/// Whether no newline character begins with this byte, as is so of nearly all: they are passed
/// without a closer look.
bool isPlain(char byte) {
  const auto character = static_cast<unsigned char>(byte);
  return character > 0x0D && character < 0x80;
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
  while (at < text.size() && (isPlain(text[at]) || (newline = newlineLength(text, at)) == 0)) ++at;
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

std::vector<std::string> ignoredServicePrefixes() {
  return {"mds",     "fsevents",   "spotlight",  "corespotlight", "quicklook",
          "cloudd",  "dbfsevents", "livefiles",  "hazel",         "sharedfilelist",
          "dropbox", "onedrive",   "googledrive"};
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
