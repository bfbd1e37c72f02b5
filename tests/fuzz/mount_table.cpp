// The kernel's table of mounts.

#include "platform/linux/mount_table.h"

#include <string>

#include "tests/fuzz/fuzzing.h"

namespace quillmont::testing {
namespace {

/// Every byte that could mean something, as the kernel escapes it.
std::string escaped(const std::string& text) {
  std::string result;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte > ' ' && byte < 0x7F && c != '\\') {
      result += c;
    } else {
      const auto digit = [byte](int shift) {
        return static_cast<char>('0' + ((byte >> shift) & 7));
      };
      result.append({'\\', digit(6), digit(3), digit(0)});
    }
  }
  return result;
}

std::string lineOf(const Mount& mount) {
  return std::to_string(mount.id) + " " + std::to_string(mount.parentId) + " " +
         std::to_string(mount.deviceMajor) + ":" + std::to_string(mount.deviceMinor) + " " +
         escaped(mount.root) + " " + escaped(mount.mountPoint) + " rw - " + escaped(mount.type) +
         " " + escaped(mount.source) + " rw\n";
}

void checkMount(const Mount& mount) {
  require(mount.mountPoint.starts_with('/'), "a mount point is an absolute path");
  const auto again = parseMountTable(lineOf(mount));
  require(again.size() == 1 && again.front() == mount, "a mount that is written out is read again");
}

/// A mount whose names are the parts of `bytes`.
void checkNames(std::string_view bytes) {
  Mount mount;
  mount.id = 40;
  mount.deviceMajor = 7;
  mount.mountPoint = "/" + std::string(takePart(bytes, '\n'));
  mount.root = "/" + std::string(takePart(bytes, '\n'));
  mount.source = takePart(bytes, '\n');
  mount.type = bytes;
  checkMount(mount);
}

}  // namespace

void tryInput(std::string_view input) {
  checkNames(input);
  const auto mounts = parseMountTable(input);
  const auto lines = static_cast<std::size_t>(std::count(input.begin(), input.end(), '\n')) + 1;
  require(mounts.size() <= lines, "a line is one mount at most");
  for (const auto& mount : mounts) checkMount(mount);

  // Each line stands for itself, whatever is above and below it.
  std::vector<Mount> singly;
  while (!input.empty()) {
    const auto found = parseMountTable(takePart(input, '\n'));
    singly.insert(singly.end(), found.begin(), found.end());
  }
  require(singly == mounts, "a line does not change how others are read");
}

}  // namespace quillmont::testing
