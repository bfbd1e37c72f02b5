#include "platform/linux/ghost_places.h"

#include <algorithm>
#include <string>
#include <tuple>

namespace quillmont {
namespace {

/// All that a name is looked for among, as it was before the first ghost got another one.
struct Places {
  const std::vector<Ghost> ghosts;
  const std::vector<Mount>& mounts;
  const std::vector<VolumeMount>& volumes;
};

bool isOf(const Ghost& ghost, const Mount& mount, const Places& places) {
  return std::any_of(places.volumes.begin(), places.volumes.end(), [&](const auto& volume) {
    return volume.mount.id == mount.id && volume.loopName == ghost.loopName;
  });
}

/// Whether something that is not of the ghost's image is mounted at `place`.
bool isOthers(const std::string& place, const Ghost& ghost, const Places& places) {
  return std::any_of(places.mounts.begin(), places.mounts.end(), [&](const Mount& mount) {
    return mount.mountPoint == place && !isOf(ghost, mount, places);
  });
}

bool isFollowed(const Ghost& ghost, const Places& places) {
  return std::any_of(places.ghosts.begin(), places.ghosts.end(), [&](const Ghost& other) {
    return other.mountPoint == ghost.mountPoint && other.loopName != ghost.loopName &&
           std::tie(other.loopSequence, other.loopName) >
               std::tie(ghost.loopSequence, ghost.loopName);
  });
}

bool isTaken(const std::string& place, const Ghost& ghost, const Places& places) {
  return isOthers(place, ghost, places) ||
         std::any_of(places.ghosts.begin(), places.ghosts.end(), [&](const Ghost& other) {
           return other.mountPoint == place && other.loopName != ghost.loopName;
         });
}

}  // namespace

void nameGhostsApart(std::vector<Ghost>& ghosts, const std::vector<Mount>& mounts,
                     const std::vector<VolumeMount>& volumes) {
  const Places places = {ghosts, mounts, volumes};
  for (auto& ghost : ghosts) {
    const bool isMountedOver = !ghost.covered && isOthers(ghost.mountPoint, ghost, places);
    if (!isMountedOver && !isFollowed(ghost, places)) continue;
    std::string place = ghost.mountPoint;
    do {
      place += " (" + ghost.loopName + ")";
    } while (isTaken(place, ghost, places));
    ghost.mountPoint = place;
  }
}

}  // namespace quillmont
