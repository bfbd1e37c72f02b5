#include "tests/support/own_volumes.h"

#include <sys/mount.h>

#include <algorithm>
#include <stdexcept>

#include "platform/linux/image_devices.h"
#include "platform/linux/mount_table.h"
#include "tests/support/forked.h"

namespace quillmont::testing {

std::string enterOwnVolumes() {
  if (!enterOwnMountTable()) return "there can be no mounts of our own";
  dropVolumesExcept("");
  if (mount("memory", "/media", "tmpfs", MS_NOSUID, "mode=755") != 0) return "there is no /media";
  return "";
}

void dropVolumesExcept(const std::string& kept) {
  const auto mounts = readMountTable();
  if (!mounts) return;
  const auto volumes = imageMounts(*mounts);
  for (auto volume = volumes.rbegin(); volume != volumes.rend(); ++volume) {
    const auto& place = volume->mount.mountPoint;
    if (place != kept) umount2(place.c_str(), MNT_DETACH | UMOUNT_NOFOLLOW);
  }
}

bool isMounted(const std::string& place) {
  const auto mounts = readMountTable();
  if (!mounts) throw std::runtime_error(mounts.errorText());
  return std::any_of(mounts->begin(), mounts->end(),
                     [&](const Mount& mount) { return mount.mountPoint == place; });
}

}  // namespace quillmont::testing
