#include "platform/linux/tools/lsof/memory_maps.h"

#include <limits.h>
#include <sys/ioctl.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstddef>
#include <cstring>

namespace quillmont {
namespace {

/// struct procmap_query of linux/fs.h, which the headers of older systems do not have.
struct MapQuery {
  std::uint64_t size = sizeof(MapQuery);
  std::uint64_t flags = 0;
  std::uint64_t address = 0;
  std::uint64_t start = 0;
  std::uint64_t end = 0;
  std::uint64_t permissions = 0;
  std::uint64_t pageSize = 0;
  std::uint64_t offset = 0;
  std::uint64_t inode = 0;
  std::uint32_t deviceMajor = 0;
  std::uint32_t deviceMinor = 0;
  std::uint32_t nameSize = 0;
  std::uint32_t buildIdSize = 0;
  std::uint64_t nameAddress = 0;
  std::uint64_t buildIdAddress = 0;
};
constexpr unsigned long kQueryMap = _IOWR('f', 17, MapQuery);
constexpr std::uint64_t kThisOrNext = 0x10;
constexpr std::uint64_t kFilesOnly = 0x20;

/// Cuts the next field off `line`, at the single `separator` behind it.
std::string_view takeField(std::string_view& line, char separator) {
  const auto field = line.substr(0, line.find(separator));
  line.remove_prefix(std::min(line.size(), field.size() + 1));
  return field;
}

template <class Number>
bool readNumber(std::string_view text, int base, Number& number) {
  const auto* const end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, number, base);
  return read.ec == std::errc() && read.ptr == end;
}

std::string decodedName(std::string_view nameInLine) {
  constexpr std::string_view kNewline = "\\012";
  std::string name(nameInLine);
  for (auto at = name.find(kNewline); at != name.npos; at = name.find(kNewline, at + 1)) {
    name.replace(at, kNewline.size(), 1, '\n');
  }
  return name;
}

/// The name of the file mapped at `address`; empty if the mapping has gone meanwhile.
std::string nameOfMapping(int maps, std::uint64_t address) {
  std::array<char, PATH_MAX> name;
  MapQuery query;
  query.flags = kFilesOnly;
  query.address = address;
  query.nameSize = name.size();
  query.nameAddress = reinterpret_cast<std::uintptr_t>(name.data());
  if (ioctl(maps, kQueryMap, &query) != 0 || query.nameSize == 0) return {};
  return std::string(name.data(), query.nameSize - 1);
}

}  // namespace

std::optional<MapLine> parseMapLine(std::string_view line) {
  takeField(line, ' ');  // addresses
  takeField(line, ' ');  // permissions
  takeField(line, ' ');  // offset
  unsigned deviceMajor = 0;
  unsigned deviceMinor = 0;
  MapLine file;
  if (!readNumber(takeField(line, ':'), 16, deviceMajor) ||
      !readNumber(takeField(line, ' '), 16, deviceMinor) ||
      !readNumber(takeField(line, ' '), 10, file.inode)) {
    return std::nullopt;
  }
  if (deviceMajor == 0 && deviceMinor == 0) return std::nullopt;
  file.device = makedev(deviceMajor, deviceMinor);
  file.name = line.substr(std::min(line.find_first_not_of(' '), line.size()));
  return file;
}

std::vector<MappedFile> mappedFiles(int maps, const VolumeIdentity& volume) {
  auto files = mappedFilesByQuery(maps, volume);
  return files ? std::move(*files) : mappedFilesByText(maps, volume);
}

std::optional<std::vector<MappedFile>> mappedFilesByQuery(int maps, const VolumeIdentity& volume) {
  std::vector<MappedFile> files;
  MapQuery query;
  query.flags = kThisOrNext | kFilesOnly;
  while (ioctl(maps, kQueryMap, &query) == 0) {
    const std::uint64_t device = makedev(query.deviceMajor, query.deviceMinor);
    if (volume.hasDevice(device)) {
      files.push_back({device, query.inode, nameOfMapping(maps, query.start)});
    }
    query.address = query.end;
  }
  if (errno == ENOTTY) return std::nullopt;
  return files;
}

std::vector<MappedFile> mappedFilesByText(int maps, const VolumeIdentity& volume) {
  std::vector<MappedFile> files;
  std::array<char, 32768> buffer;
  std::size_t kept = 0;
  for (;;) {
    const auto count = read(maps, buffer.data() + kept, buffer.size() - kept);
    if (count <= 0) return files;
    std::string_view text(buffer.data(), kept + static_cast<std::size_t>(count));
    for (auto end = text.find('\n'); end != text.npos; end = text.find('\n')) {
      const auto line = parseMapLine(text.substr(0, end));
      if (line && volume.hasDevice(line->device)) {
        files.push_back({line->device, line->inode, decodedName(line->name)});
      }
      text.remove_prefix(end + 1);
    }
    // A line longer than the buffer cannot come from the kernel, whose paths end at a page.
    kept = text.size() < buffer.size() ? text.size() : 0;
    std::memmove(buffer.data(), text.data(), kept);
  }
}

}  // namespace quillmont
