#include "platform/linux/tools/hdiutil/detach.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <optional>

#include "platform/linux/tools/hdiutil/ImageTable.h"
#include "platform/linux/tools/hdiutil/loop_control.h"
#include "platform/posix/errors.h"

namespace quillmont {
namespace {

constexpr std::chrono::seconds kReleaseLimit(2);

/// The root of the mounted volume, if that very mount is what its path leads to and nothing lies
/// over it.
std::optional<struct statx> rootOf(const Mount& mount) {
  struct statx status = {};
  const int flags = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC;
  if (statx(AT_FDCWD, mount.mountPoint.c_str(), flags, STATX_TYPE | STATX_MNT_ID, &status) != 0 ||
      !(status.stx_mask & STATX_MNT_ID) || static_cast<int>(status.stx_mnt_id) != mount.id) {
    return std::nullopt;
  }
  return status;
}

bool isStillMounted(const Mount& mount) {
  const auto mounts = readMountTable();
  if (!mounts) return true;
  return std::any_of(mounts->begin(), mounts->end(), [&mount](const Mount& other) {
    return other.id == mount.id && other.mountPoint == mount.mountPoint;
  });
}

Ghost ghostOf(const VolumeMount& volume, const LoopDevice& loop, const struct statx& root) {
  return {.loopName = loop.name,
          .loopSequence = loop.sequence,
          .imagePath = loop.backingFile,
          .deviceNode = volume.deviceNode,
          .mountPoint = volume.mount.mountPoint,
          .mountId = static_cast<std::uint64_t>(volume.mount.id),
          .superDevice = makedev(volume.mount.deviceMajor, volume.mount.deviceMinor),
          .statDevice = makedev(root.stx_dev_major, root.stx_dev_minor)};
}

void writeOut(const std::string& mountPoint) {
  const Descriptor root(
      open(mountPoint.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK));
  if (root) syncfs(root.get());
}

/// The record comes before the deed: from the moment the mount table forgets the volume, the record
/// is all that tells of it.
UnmountOutcome unmountLazily(const VolumeMount& volume, const LoopDevice& loop,
                             const struct statx& root, ImageControl& control) {
  writeOut(volume.mount.mountPoint);
  const Ghost ghost = ghostOf(volume, loop, root);
  if (const auto remembered = rememberGhost(ghost); !remembered) {
    return {false, true, "in use, and no record of that can be kept: " + remembered.errorText()};
  }
  auto outcome = control.unmount(volume, Unmounting::lazily);
  if (!outcome.done) forgetGhost(ghost);
  return outcome;
}

/// Whether a ghost was left behind.
Result<bool> unmountVolume(const VolumeMount& volume, const LoopDevice& loop, bool force,
                           ImageControl& control) {
  const auto root = rootOf(volume.mount);
  if (!root) {
    if (!isStillMounted(volume.mount)) return false;  // went together with another bind mount
    return Error{"another volume is mounted over " + volume.mount.mountPoint};
  }
  auto outcome = control.unmount(volume, Unmounting::whenUnused);
  const bool lazily = !outcome.done && outcome.busy && force;
  if (lazily) outcome = unmountLazily(volume, loop, *root, control);
  if (outcome.done || !isStillMounted(volume.mount)) return lazily;
  return Error{outcome.text};
}

}  // namespace

Result<void> detachImage(const std::string& place, bool force, ImageControl& control) {
  const auto table = ImageTable::read();
  if (!table) return Error{table.errorText()};
  const auto* image = table->find(place);
  if (!image) return Error{errorText(ENOENT)};
  const auto volumes = table->mountsOf(image->loop.name);
  // A lazy detach would take these along, and nobody would know of them any more.
  if (const auto inside = table->mountInside(volumes); !inside.empty()) {
    return Error{errorText(EBUSY) + ": something else is mounted at " + inside};
  }
  bool ghosts = !table->ghostsOf(image->loop.name).empty();
  for (const auto& volume : volumes) {
    const auto left = unmountVolume(volume, image->loop, force, control);
    if (!left) return Error{left.errorText()};
    ghosts = ghosts || *left;
  }
  control.release(image->loop);
  // Another mount namespace may keep the device for as long as it likes: that is not our volume.
  if (!ghosts) waitForRelease(image->loop, kReleaseLimit);
  return {};
}

}  // namespace quillmont
