// A process's memory mappings: a table that is read by pieces, as the kernel hands it out.

#include "platform/linux/tools/lsof/memory_maps.h"

#include <sys/mman.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <string>

#include "platform/posix/Descriptor.h"
#include "platform/posix/files.h"
#include "tests/fuzz/fuzzing.h"

namespace quillmont::testing {
namespace {

constexpr std::size_t kLongestLine = 16384;
constexpr std::size_t kMoreThanAPiece = 40'000;

std::optional<MapLine> checkedLine(std::string_view line) {
  const auto file = parseMapLine(line);
  if (!file) return std::nullopt;
  require(file->device != 0, "a mapped file is on a device");
  require(file->name.empty() || line.ends_with(file->name), "a name is the end of its line");
  require(!file->name.starts_with(' '), "a name begins behind the spaces");
  return file;
}

Descriptor fileWith(std::string_view bytes) {
  Descriptor file(memfd_create("maps", MFD_CLOEXEC));
  require(file && writeAll(file.get(), bytes) && lseek(file.get(), 0, SEEK_SET) == 0,
          "the machine has memory");
  return file;
}

/// `bytes` again and again, so that a table comes in more than one piece, cut anywhere.
std::string repeated(std::string_view bytes) {
  std::string text(bytes);
  while (!bytes.empty() && text.size() < kMoreThanAPiece) text += bytes;
  return text;
}

}  // namespace

void tryInput(std::string_view input) {
  const auto text = repeated(input);
  VolumeIdentity volume;
  std::size_t expected = 0;
  bool ordinary = true;
  for (std::string_view rest = text; !rest.empty();) {
    const bool ended = rest.find('\n') != rest.npos;
    const auto line = takePart(rest, '\n');
    ordinary = ordinary && line.size() < kLongestLine;
    const auto file = checkedLine(line);
    // The files of the first device that is named are the volume's.
    if (file && volume.devices.empty()) volume.devices.push_back(file->device);
    if (file && ended && volume.hasDevice(file->device)) ++expected;
  }
  const auto table = fileWith(text);
  const auto files = mappedFilesByText(table.get(), volume);
  require(!ordinary || files.size() == expected, "pieces of the table make up its lines");
  for (const auto& file : files) require(volume.hasDevice(file.device), "a file is the volume's");
}

}  // namespace quillmont::testing
