#include "platform/linux/volume_paths.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "platform/posix/xml_text.h"

namespace quillmont {
namespace {

constexpr std::string_view kDigits = "0123456789abcdef";  // of an escape

/// In the order of preference.
std::array<std::string, 2> volumeRoots(const std::string& user) {
  return {"/media/" + user + "/", "/run/media/" + user + "/"};
}

/// The volume's name below the root of that preference; empty if it is not there.
std::string_view nameBelow(const std::string& root, std::string_view mountPoint) {
  return mountPoint.starts_with(root) ? mountPoint.substr(root.size()) : std::string_view();
}

/// How many bytes the character at the front of `bytes` takes if a property list carries it
/// unchanged, else 0. XML has no control characters but a few, and of these a carriage return would
/// come back as a line feed.
std::size_t carriedCharacter(std::string_view bytes) {
  const bool lost = bytes.starts_with('\r') || bytes.starts_with('\x7f');
  return lost ? 0 : xmlCharacterLength(bytes);
}

/// Whether what is there would be taken for an escape.
bool looksEscaped(std::string_view bytes) {
  const auto isDigit = [](char character) { return kDigits.find(character) != kDigits.npos; };
  return bytes.size() >= 4 && bytes.starts_with("\\x") && isDigit(bytes[2]) && isDigit(bytes[3]);
}

bool contains(const std::vector<std::string>& list, const std::string& text) {
  return std::find(list.begin(), list.end(), text) != list.end();
}

}  // namespace

std::string presentable(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  while (!bytes.empty()) {
    const std::size_t length = looksEscaped(bytes) ? 0 : carriedCharacter(bytes);
    if (length == 0) {
      const auto byte = static_cast<unsigned char>(bytes.front());
      text.append({'\\', 'x', kDigits[byte >> 4], kDigits[byte & 15]});
    }
    text.append(bytes.substr(0, length));
    bytes.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return text;
}

std::string presentedVolumePath(const std::string& mountPoint, const std::string& user,
                                const std::vector<std::string>& allMountPoints) {
  const auto roots = volumeRoots(user);
  for (std::size_t i = 0; i < roots.size(); ++i) {
    const std::string name(nameBelow(roots[i], mountPoint));
    if (name.empty()) continue;
    const auto presented = std::string(kVolumesFolder) + name;
    // A file system that is really mounted below /Volumes has the first right to its name.
    const bool clash =
        contains(allMountPoints, presented) || (i > 0 && contains(allMountPoints, roots[0] + name));
    if (!clash) return presentable(presented);
  }
  return presentable(mountPoint);
}

bool isVolumeOfUser(std::string_view mountPoint, const std::string& user) {
  const auto roots = volumeRoots(user);
  const auto holdsIt = [&](const std::string& root) {
    return !nameBelow(root, mountPoint).empty();
  };
  return mountPoint.starts_with(kVolumesFolder) || std::any_of(roots.begin(), roots.end(), holdsIt);
}

std::string volumeMountPoint(const std::string& presented, const std::string& user,
                             const std::vector<std::string>& allMountPoints) {
  const auto found = std::find_if(
      allMountPoints.begin(), allMountPoints.end(), [&](const std::string& mountPoint) {
        return presentedVolumePath(mountPoint, user, allMountPoints) == presented;
      });
  return found == allMountPoints.end() ? std::string() : *found;
}

}  // namespace quillmont
