#include "platform/linux/volume_paths.h"

#include <algorithm>
#include <array>

namespace quillmont {

namespace {

/// In the order of preference.
std::array<std::string, 2> volumeRoots(const std::string& user) {
  return {"/media/" + user + "/", "/run/media/" + user + "/"};
}

/// The volume's name below the root of that preference; empty if it is not there.
std::string_view nameBelow(const std::string& root, std::string_view mountPoint) {
  return mountPoint.starts_with(root) ? mountPoint.substr(root.size()) : std::string_view();
}

/// How many bytes the character at the front of `bytes` takes if it is one that an XML text can
/// carry unchanged, else 0. A carriage return would come back as a line feed.
std::size_t carriedCharacter(std::string_view bytes) {
  const auto byte = [bytes](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  const unsigned first = byte(0);
  if (first < 0x80) return (first >= 0x20 && first != 0x7f) || first == '\t' || first == '\n';
  const std::size_t length = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
  if (first < 0xc2 || first > 0xf4 || bytes.size() < length) return 0;
  unsigned point = first & (0x7fu >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xc0u) != 0x80) return 0;
    point = point << 6 | (byte(i) & 0x3fu);
  }
  constexpr std::array<unsigned, 5> smallest = {0, 0, 0x80, 0x800, 0x10000};
  const bool surrogate = point >= 0xd800 && point <= 0xdfff;
  const bool noCharacter = point == 0xfffe || point == 0xffff || point > 0x10ffff;
  return point < smallest[length] || surrogate || noCharacter ? 0 : length;
}

bool contains(const std::vector<std::string>& list, const std::string& text) {
  return std::find(list.begin(), list.end(), text) != list.end();
}

}  // namespace

std::string presentable(std::string_view bytes) {
  constexpr char digits[] = "0123456789abcdef";
  std::string text;
  text.reserve(bytes.size());
  while (!bytes.empty()) {
    const std::size_t length = carriedCharacter(bytes);
    if (length == 0) {
      const auto byte = static_cast<unsigned char>(bytes.front());
      text.append({'\\', 'x', digits[byte >> 4], digits[byte & 15]});
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
    // A file system that is really mounted below /Volumes has the first right to its name.
    const bool clash = contains(allMountPoints, "/Volumes/" + name) ||
                       (i > 0 && contains(allMountPoints, roots[0] + name));
    if (!clash) return presentable("/Volumes/" + name);
  }
  return presentable(mountPoint);
}

std::string volumeMountPoint(const std::string& presented, const std::string& user,
                             const std::vector<std::string>& allMountPoints) {
  std::string found;
  for (const auto& mountPoint : allMountPoints) {
    if (presentedVolumePath(mountPoint, user, allMountPoints) != presented) continue;
    // A name that needed no escapes is meant before one that only looks like it.
    if (found.empty() || presentable(mountPoint) == mountPoint) found = mountPoint;
  }
  return found;
}

}  // namespace quillmont
