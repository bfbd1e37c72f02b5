// The open-files tool: which processes use a volume.

#include <unistd.h>

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/linux/ghost_places.h"
#include "platform/linux/ghosts.h"
#include "platform/linux/image_devices.h"
#include "platform/linux/mount_table.h"
#include "platform/linux/tools/lsof/ProcessScan.h"
#include "platform/linux/tools/lsof/SharedLook.h"
#include "platform/linux/tools/lsof/VolumeIdentity.h"
#include "platform/linux/user_folders.h"
#include "platform/linux/volume_paths.h"
#include "platform/posix/files.h"

namespace quillmont {
namespace {

constexpr int kUsage = 2;

/// Not through std::cerr: what streams need to come up would be a fifth of the tool's start.
int fail(int status, const std::string& line) {
  static_cast<void>(writeAll(STDERR_FILENO, line + '\n'));
  return status;
}

int answer(const std::string& report) {
  if (report.empty()) return 1;
  const auto written = writeAll(STDOUT_FILENO, report);
  return written ? 0 : fail(1, "lsof: " + written.errorText());
}

/// The places of all images of the user's but `asked`, each once, and what the user knows them as.
/// Images that the system itself has attached, packaged programs for instance, are none of them.
std::map<std::string, std::string> otherPlaces(const std::string& asked, const std::string& user,
                                               const VolumeSurroundings& system) {
  std::map<std::string, std::string> places;
  const auto all = mountPointsOf(system);
  const auto add = [&](const std::string& place) {
    auto presented = presentedVolumePath(place, user, all);
    if (presented.starts_with(kVolumesFolder)) places.emplace(place, std::move(presented));
  };
  for (const auto& volume : system.volumes) add(volume.mount.mountPoint);
  for (const auto& ghost : system.ghosts) add(ghost.mountPoint);
  places.erase(asked);
  return places;
}

/// Looks for the users of all images of the user's at once, and keeps what it finds about those
/// that are not at `asked`. The report about `asked`.
std::string lookForAll(const std::string& asked, const std::string& user,
                       const VolumeSurroundings& system, const SharedLook& shared) {
  const auto began = timeSinceBoot();
  shared.drop();
  std::vector<VolumeIdentity> volumes = {identifyVolume(asked, system, cachedMountPointStatus)};
  const auto others = otherPlaces(asked, user, system);
  for (const auto& [place, presented] : others) {
    volumes.push_back(identifyVolume(place, system, cachedMountPointStatus));
  }
  auto reports = ProcessScan(volumes).reports();
  std::vector<VolumeAnswer> answers;
  answers.reserve(others.size());
  auto report = reports.begin();
  for (const auto& [place, presented] : others) {
    answers.push_back({presented, std::move(*++report)});
  }
  if (!answers.empty()) shared.keep(answers, began);
  return reports.front();
}

int listOpenFiles(const std::string& path) {
  const auto table = readFile(kMountTable);
  if (!table) return fail(1, "lsof: " + table.errorText());
  const auto shared = SharedLook::ofParent(*table);
  if (shared) {
    if (const auto kept = shared->take(path, timeSinceBoot())) return answer(*kept);
  }
  VolumeSurroundings system = {parseMountTable(*table), {}, livingGhosts()};
  system.volumes = imageMounts(system.mounts);
  nameGhostsApart(system.ghosts, system.mounts, system.volumes);
  const auto user = userName();
  const auto mountPoint = mountPointOfVolume(path, user, system);
  if (mountPoint.empty()) return fail(1, "lsof: no volume is mounted at " + path);
  if (shared) return answer(lookForAll(mountPoint, user, system, *shared));
  const auto volume = identifyVolume(mountPoint, system, cachedMountPointStatus);
  return answer(ProcessScan({volume}).reports().front());
}

}  // namespace
}  // namespace quillmont

int main(int argc, char* argv[]) {
  const bool understood =
      argc == 4 && std::string_view(argv[1]) == "-F" && std::string_view(argv[2]) == "cpn";
  if (!understood) return quillmont::fail(quillmont::kUsage, "usage: lsof -F cpn <mount point>");
  return quillmont::listOpenFiles(argv[3]);
}
