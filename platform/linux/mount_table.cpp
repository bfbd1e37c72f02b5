#include "platform/linux/mount_table.h"

#include <charconv>
#include <optional>

#include "platform/posix/files.h"

namespace quillmont {
namespace {

using Fields = std::vector<std::string_view>;

/// Single spaces part the fields: a file system without a source leaves two in a row.
Fields split(std::string_view text, char separator) {
  Fields fields;
  for (;;) {
    const auto end = text.find(separator);
    fields.push_back(text.substr(0, end));
    if (end == std::string_view::npos) return fields;
    text.remove_prefix(end + 1);
  }
}

bool isOctal(char c) {
  return c >= '0' && c <= '7';
}

/// Which characters the kernel escapes differs by field and by version, so all escapes are read.
std::string decoded(std::string_view field) {
  std::string text;
  text.reserve(field.size());
  for (std::size_t i = 0; i < field.size(); ++i) {
    const auto digits = field.substr(i, 4);
    if (digits.size() == 4 && digits[0] == '\\' && digits[1] >= '0' && digits[1] <= '3' &&
        isOctal(digits[2]) && isOctal(digits[3])) {
      const int value = (digits[1] - '0') * 64 + (digits[2] - '0') * 8 + (digits[3] - '0');
      text += static_cast<char>(value);
      i += 3;
    } else {
      text += field[i];
    }
  }
  return text;
}

template <class Number>
bool readNumber(std::string_view text, Number& number) {
  const auto end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  return result.ec == std::errc() && result.ptr == end;
}

std::optional<Mount> parseLine(std::string_view line) {
  const Fields fields = split(line, ' ');
  std::size_t dash = 6;  // the optional fields before it vary in number
  while (dash < fields.size() && fields[dash] != "-") ++dash;
  if (dash + 3 >= fields.size()) return std::nullopt;

  Mount mount;
  const Fields device = split(fields[2], ':');
  if (device.size() != 2 || !readNumber(fields[0], mount.id) ||
      !readNumber(fields[1], mount.parentId) || !readNumber(device[0], mount.deviceMajor) ||
      !readNumber(device[1], mount.deviceMinor)) {
    return std::nullopt;
  }
  mount.root = decoded(fields[3]);
  mount.mountPoint = decoded(fields[4]);
  mount.type = decoded(fields[dash + 1]);
  mount.source = decoded(fields[dash + 2]);
  if (mount.mountPoint.empty() || mount.mountPoint.front() != '/') return std::nullopt;
  return mount;
}

}  // namespace

std::vector<Mount> parseMountTable(std::string_view text) {
  std::vector<Mount> mounts;
  for (const auto line : split(text, '\n')) {
    if (auto mount = parseLine(line)) mounts.push_back(std::move(*mount));
  }
  return mounts;
}

Result<std::vector<Mount>> readMountTable() {
  const auto text = readFile(kMountTable);
  if (!text) return Error{text.errorText()};
  return parseMountTable(*text);
}

}  // namespace quillmont
