#include "platform/linux/tools/hdiutil/KernelImages.h"

#include <fcntl.h>
#include <libmount.h>  // after sys/mount.h, whose names it uses
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>

#include "platform/linux/tools/hdiutil/loop_control.h"
#include "platform/linux/tools/hdiutil/loop_search.h"
#include "platform/linux/tools/hdiutil/mount_folders.h"
#include "platform/posix/errors.h"

namespace quillmont {
namespace {

using MountContext = std::unique_ptr<libmnt_context, void (*)(libmnt_context*)>;

Result<void> mountDevice(const std::string& node, const std::string& type, bool readOnly,
                         const std::string& place) {
  const MountContext context(mnt_new_context(), mnt_free_context);
  if (!context) return Error{errorText(ENOMEM)};
  mnt_context_set_source(context.get(), node.c_str());
  mnt_context_set_target(context.get(), place.c_str());
  mnt_context_set_fstype(context.get(), type.c_str());
  mnt_context_set_options(context.get(), readOnly ? "nosuid,nodev,ro" : "nosuid,nodev");
  mnt_context_set_optsmode(context.get(), MNT_OMODE_NOTAB);  // fstab has no say in images
  mnt_context_disable_canonicalize(context.get(), 1);        // no link leads to another place
  const int status = mnt_context_mount(context.get());
  char text[512] = "";
  if (mnt_context_get_excode(context.get(), status, text, sizeof text) == 0) return {};
  return Error{"cannot mount " + node + ": " + (*text ? text : "mount failed")};
}

/// A node's time stamp says since when its image is there. udev renews it at an attachment; without
/// udev it would tell of the machine's start, and a new image would pass for long idle.
void renewTimeStamp(const std::string& node) {
  utimensat(AT_FDCWD, node.c_str(), nullptr, AT_SYMLINK_NOFOLLOW);
}

/// Within its turn: the folder of a volume that is about to be mounted looks like one that is free.
Result<std::string> folderFor(const ImageVolume& volume, const std::string& place,
                              const std::string& media, std::vector<std::string> taken) {
  const auto mounts = readMountTable();
  if (!mounts) return Error{mounts.errorText()};
  for (const auto& mount : *mounts) taken.push_back(mount.mountPoint);
  const std::filesystem::path wanted = place;
  const bool canBeHad = !place.empty() && wanted.parent_path() == media;
  return makeVolumeFolder(media, canBeHad ? wanted.filename().string() : volumeFolderName(volume),
                          taken);
}

}  // namespace

Result<std::string> KernelImages::deviceOf(const ImageFile& image) {
  auto unopened = attachedLoopDevices();
  for (const auto& name : attachedLoopNames()) {
    Descriptor device = openLoop(name);
    if (!device) continue;
    if (loopCarries(device, image.status)) {
      open_.insert_or_assign(name, std::move(device));
      return name;
    }
    std::erase_if(unopened, [&name](const LoopDevice& loop) { return loop.name == name; });
  }
  return findLoopOf(image, unopened);
}

Result<std::string> KernelImages::setUp(const ImageFile& image) {
  auto loop = configureLoop(image);
  if (!loop) return Error{loop.errorText()};
  open_.insert_or_assign(loop->name, std::move(loop->device));
  return loop->name;
}

Result<std::string> KernelImages::mount(const std::string& loopName, const ImageVolume& volume,
                                        const std::string& place,
                                        const std::vector<std::string>& taken) {
  const Descriptor& loop = open_[loopName];
  if (volume.partition != 0) {
    if (auto known = ensurePartition(loop, loopName, volume); !known) {
      return Error{known.errorText()};
    }
  }
  int readOnly = 0;
  ioctl(loop.get(), BLKROGET, &readOnly);
  auto media = userMediaFolder();
  if (!media) return media;
  const auto turn = AttachmentTurn::take(*media);
  if (!turn) return Error{turn.errorText()};
  auto folder = folderFor(volume, place, *media, taken);
  if (!folder) return folder;
  const std::string node = "/dev/" + deviceName(loopName, volume.partition);
  if (auto mounted = mountDevice(node, volume.type, readOnly != 0, *folder); !mounted) {
    removeVolumeFolder(*folder);
    return Error{mounted.errorText()};
  }
  renewTimeStamp(node);
  return folder;
}

UnmountOutcome KernelImages::unmount(const VolumeMount& volume, Unmounting manner) {
  const std::string& place = volume.mount.mountPoint;
  const int flags = UMOUNT_NOFOLLOW | (manner == Unmounting::lazily ? MNT_DETACH : 0);
  if (umount2(place.c_str(), flags) != 0) return {false, errno == EBUSY, errorText(errno)};
  removeVolumeFolder(place);
  return {true, false, {}};
}

void KernelImages::releaseWithLastUnmount(const std::string& loopName) {
  releaseOnLastClose(open_[loopName]);
}

void KernelImages::release(const LoopDevice& loop) {
  releaseLoop(loop);  // first: while it is open it cannot become another image's
  open_.erase(loop.name);
}

}  // namespace quillmont
