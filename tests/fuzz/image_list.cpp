// From the kernel's tables to what the program sees: a backing file for each of three loop devices,
// each ended by a NUL, then the table of mounts.

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "monitor/attached_images.h"
#include "platform/linux/ImageTable.h"
#include "platform/linux/XmlPropertyLists.h"
#include "platform/linux/tools/hdiutil/info.h"
#include "platform/linux/tools/lsof/VolumeIdentity.h"
#include "tests/fuzz/fuzzing.h"

namespace quillmont::testing {
namespace {

constexpr char kUser[] = "user";

/// The device in the mount's own words: "/dev/loop1p2" is of "loop1".
std::optional<std::string> loopOf(const std::string& source) {
  if (!source.starts_with("/dev/loop") || source.size() < 10) return std::nullopt;
  if (source[9] < '0' || source[9] > '2') return std::nullopt;
  if (source.size() > 10 && source[10] != 'p') return std::nullopt;
  return source.substr(5, 5);
}

/// As the kernel writes it: no other path has slashes in a row or at its end.
bool isPlain(const Mount& mount) {
  const auto& path = mount.mountPoint;
  return path == "/" || (path.find("//") == path.npos && !path.ends_with('/'));
}

/// What the monitor has read in the end.
std::vector<ScanEntry> scanned(const ImageTable& table) {
  const XmlPropertyLists lists;
  const auto xml = lists.xml(infoList(table));
  require(static_cast<bool>(xml), "any image can be listed");
  const auto list = lists.parse(*xml);
  require(list && *list == infoList(table), "the list is read as it was written");
  return readAttachedImages(*list);
}

void checkEntry(const ScanEntry& entry, const ImageTable& table, const std::vector<Mount>& mounts,
                const std::vector<VolumeMount>& volumes) {
  require(table.find(entry.mountPoint), "a listed volume can be detached");
  require(!mountPointOfVolume(entry.mountPoint, kUser, {mounts, volumes, {}}).empty(),
          "the users of a listed volume can be found");
}

}  // namespace

void tryInput(std::string_view input) {
  std::vector<LoopDevice> loops;
  for (const char* name : {"loop0", "loop1", "loop2"}) {
    const std::string backingFile(takePart(input));
    if (backingFile.starts_with('/')) loops.push_back({name, backingFile, 7, false});
  }
  auto mounts = parseMountTable(input);
  std::erase_if(mounts, [](const Mount& mount) { return !isPlain(mount); });
  // What is mounted from a loop device keeps it attached.
  std::erase_if(mounts, [&](const Mount& mount) {
    const auto name = loopOf(mount.source);
    return name && std::none_of(loops.begin(), loops.end(),
                                [&](const LoopDevice& loop) { return loop.name == *name; });
  });
  const auto volumes = imageMounts(mounts, loopOf);
  const ImageTable table(loops, {"loop0p1", "loop0p2"}, mounts, volumes, {}, kUser);
  require(table.images().size() == loops.size(), "every attached image is there");
  for (const auto& image : table.images()) {
    require(!image.entities.empty(), "an image has a device");
    require(table.find("/dev/" + image.loop.name), "an image is found by its device");
  }
  const auto entries = scanned(table);
  require(entries.size() <= loops.size(), "an image is listed once");
  for (const auto& entry : entries) checkEntry(entry, table, mounts, volumes);
  require(!infoText(table).empty() || loops.empty(), "people are told too");
}

}  // namespace quillmont::testing
