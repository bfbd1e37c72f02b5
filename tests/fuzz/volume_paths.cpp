// Mount points of any bytes, divided by NULs, and the names under which the program knows them.

#include "platform/linux/volume_paths.h"

#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/XmlPropertyLists.h"
#include "tests/fuzz/fuzzing.h"

namespace quillmont::testing {
namespace {

constexpr char kUser[] = "user";

/// What presentable() has made of the bytes, undone.
std::string read(std::string_view text) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string bytes;
  while (!text.empty()) {
    const bool escape = text.size() >= 4 && text.starts_with("\\x") &&
                        text.substr(2, 2).find_first_not_of(kDigits) == text.npos;
    bytes += escape ? static_cast<char>(kDigits.find(text[2]) * 16 + kDigits.find(text[3]))
                    : text.front();
    text.remove_prefix(escape ? 4 : 1);
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
