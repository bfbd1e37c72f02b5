#include "platform/linux/tools/hdiutil/detach.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <optional>

#include "platform/linux/ImageTable.h"
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

Ghost ghostOf(const VolumeMount& volume, const LoopDevice& loop, const ImageTable& table,
              const std::optional<struct statx>& root) {
  Ghost ghost;
  ghost.loopName = loop.name;
  ghost.loopSequence = loop.sequence;
  ghost.imagePath = loop.backingFile;
  ghost.deviceNode = volume.deviceNode;
  ghost.mountPoint = volume.mount.mountPoint;
  ghost.covered = table.coversAnother(volume.mount);
  ghost.mountId = static_cast<std::uint64_t>(volume.mount.id);
  ghost.superDevice = makedev(volume.mount.deviceMajor, volume.mount.deviceMinor);
  if (root) ghost.statDevice = makedev(root->stx_dev_major, root->stx_dev_minor);
  return ghost;
}

void writeOut(const std::string& mountPoint) {
  const Descriptor root(
      open(mountPoint.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK));
  if (root) syncfs(root.get());
}

/// One image on its way out.
class Detachment {
 public:
  Detachment(const ImageTable& table, const LoopDevice& loop, bool force, ImageControl& control)
      : table_(table),
        loop_(loop),
        lingers_(!table.ghostsOf(loop.name).empty()),
        force_(force),
        control_(control) {}

  Result<void> run(const std::vector<VolumeMount>& volumes);

 private:
  Result<void> unmountAll(const std::vector<VolumeMount>& volumes);
  Result<void> unmount(const VolumeMount& volume);
  Result<void> unmountLazily(const VolumeMount& volume, const Ghost& ghost);
  void noteUnmounted(const VolumeMount& volume, Ghost ghost);
  Result<void> rememberUnmounted() const;

  const ImageTable& table_;
  const LoopDevice& loop_;
  bool lingers_;  ///< the image stays attached in any case
  const bool force_;
  ImageControl& control_;
  std::vector<Ghost> unmounted_;  ///< volumes that went cleanly
};

Result<void> Detachment::run(const std::vector<VolumeMount>& volumes) {
  auto done = unmountAll(volumes);
  // Who holds one volume holds the image, and with it the places of the others.
  auto remembered = lingers_ ? rememberUnmounted() : Result<void>();
  if (!done) return done;
  control_.release(loop_);
  // Another mount namespace or a mapping may keep the device for as long as it likes.
  if (!lingers_ && !waitForRelease(loop_, kReleaseLimit)) return rememberUnmounted();
  return remembered;
}

Result<void> Detachment::unmountAll(const std::vector<VolumeMount>& volumes) {
  for (const auto& volume : volumes) {
    if (auto done = unmount(volume); !done) return done;
  }
  return {};
}

Result<void> Detachment::unmount(const VolumeMount& volume) {
  const auto root = rootOf(volume.mount);
  const Ghost ghost = ghostOf(volume, loop_, table_, root);
  if (!root) {
    if (isStillMounted(volume.mount)) {
      return Error{"it cannot be reached, or another volume is mounted over it: " +
                   volume.mount.mountPoint};
    }
    noteUnmounted(volume, ghost);  // went together with another bind mount
    return {};
  }
  const auto outcome = control_.unmount(volume, Unmounting::whenUnused);
  if (!outcome.done && outcome.busy && force_) return unmountLazily(volume, ghost);
  if (!outcome.done && isStillMounted(volume.mount)) return Error{outcome.text};
  noteUnmounted(volume, ghost);
  return {};
}

/// The record comes before the deed: from the moment the mount table forgets the volume, the record
/// is all that tells of it.
Result<void> Detachment::unmountLazily(const VolumeMount& volume, const Ghost& ghost) {
  writeOut(volume.mount.mountPoint);
  if (const auto remembered = rememberGhost(ghost); !remembered) {
    return Error{"in use, and no record of that can be kept: " + remembered.errorText()};
  }
  // Writing out takes as long as the disk does: by now the same place, device and numbers may be
  // those of another image.
  if (!control_.isAttached(loop_) || !rootOf(volume.mount)) {
    forgetGhost(ghost);
    return Error{"something else came to " + volume.mount.mountPoint + " meanwhile"};
  }
  const auto outcome = control_.unmount(volume, Unmounting::lazily);
  if (!outcome.done && isStillMounted(volume.mount)) {
    forgetGhost(ghost);
    return Error{outcome.text};
  }
  lingers_ = true;
  return {};
}

void Detachment::noteUnmounted(const VolumeMount& volume, Ghost ghost) {
  ghost.unmounted = true;
  if (isVolume(volume.mount)) unmounted_.push_back(std::move(ghost));
}

Result<void> Detachment::rememberUnmounted() const {
  Result<void> result;
  for (const auto& ghost : unmounted_) {
    if (const auto remembered = rememberGhost(ghost); !remembered) {
      result =
          Error{"still attached, and no record of that can be kept: " + remembered.errorText()};
    }
  }
  return result;
}

}  // namespace

Result<void> detachImage(const std::string& place, bool force, ImageControl& control) {
  const auto table = ImageTable::read();
  if (!table) return Error{table.errorText()};
  return detachImage(*table, place, force, control);
}

Result<void> detachImage(const ImageTable& table, const std::string& place, bool force,
                         ImageControl& control) {
  const auto* image = table.find(place);
  if (!image) return Error{errorText(ENOENT)};
  const auto volumes = table.mountsOf(image->loop.name);
  // A lazy detach would take these along, and nobody would know of them any more.
  if (const auto inside = table.mountInside(volumes); !inside.empty()) {
    return Error{errorText(EBUSY) + ": something else is mounted at " + inside};
  }
  // An attached image is held by the kernel, which no list of processes tells.
  if (const auto inside = table.imageInside(volumes); !inside.empty()) {
    return Error{errorText(EBUSY) + ": it holds another attached image, " + inside};
  }
  return Detachment(table, image->loop, force, control).run(volumes);
}

}  // namespace quillmont
