// Mount points of any bytes, divided by NULs, and the names under which the program knows them.

#include "platform/linux/volume_paths.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <vector>

#include "platform/linux/XmlPropertyLists.h"
#include "tests/fuzz/fuzzing.h"

namespace quillmont::testing {
namespace {

constexpr char kUser[] = "user";

/// What presentable() has made of the bytes, undone.
std::string read(const std::string& text) {
  std::string bytes;
  for (std::size_t at = 0; at < text.size(); ++at) {
    unsigned byte = 0;
    const auto* const digits = text.data() + at + 2;
    const bool escape =
        text.compare(at, 2, "\\x") == 0 && at + 4 <= text.size() &&
        std::none_of(digits, digits + 2, [](char c) { return c >= 'A' && c <= 'F'; }) &&
        std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2;
    bytes += escape ? static_cast<char>(byte) : text[at];
    if (escape) at += 3;
  }
  return bytes;
}

void checkPresentable(std::string_view bytes) {
  const XmlPropertyLists lists;
  const auto text = presentable(bytes);
  require(text.size() <= 4 * bytes.size(), "a name grows within bounds");
  const auto xml = lists.xml(text);
  require(static_cast<bool>(xml), "any name goes into a property list");
  require(lists.parse(*xml).value() == PropertyList(text), "and comes out of it as it was");
  require(read(text) == bytes, "no two names are presented alike");
}

void checkMountPoint(const std::string& mountPoint, const std::vector<std::string>& all) {
  const auto presented = presentedVolumePath(mountPoint, kUser, all);
  require(!presented.empty(), "a volume has a name");
  const auto found = volumeMountPoint(presented, kUser, all);
  require(found == mountPoint, "a name leads to its own volume");
}

}  // namespace

void tryInput(std::string_view input) {
  checkPresentable(input);
  std::vector<std::string> all;
  while (!input.empty() && all.size() < 16) {
    if (const auto part = takePart(input); part.starts_with('/')) all.emplace_back(part);
  }
  for (const auto& mountPoint : all) checkMountPoint(mountPoint, all);
}

}  // namespace quillmont::testing
