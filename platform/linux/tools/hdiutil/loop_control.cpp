#include "platform/linux/tools/hdiutil/loop_control.h"

#include <fcntl.h>
#include <linux/blkpg.h>
#include <linux/fs.h>
#include <linux/loop.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <thread>

#include "platform/linux/image_devices.h"
#include "platform/posix/errors.h"

namespace quillmont {
namespace {

Descriptor openNode(const std::string& name, int mode) {
  return Descriptor(open(("/dev/" + name).c_str(), mode | O_CLOEXEC | O_NONBLOCK));
}

loop_config configuration(const ImageFile& image) {
  loop_config config = {};
  config.fd = static_cast<unsigned>(image.file.get());
  config.info.lo_flags = LO_FLAGS_PARTSCAN | LO_FLAGS_AUTOCLEAR;
  if (image.readOnly) config.info.lo_flags |= LO_FLAGS_READ_ONLY;
  const std::size_t length = std::min<std::size_t>(image.path.size(), LO_NAME_SIZE - 1);
  std::memcpy(config.info.lo_file_name, image.path.data(), length);
  return config;
}

}  // namespace

bool isAttached(const LoopDevice& loop) {
  const auto loops = attachedLoopDevices();
  return std::any_of(loops.begin(), loops.end(), [&loop](const LoopDevice& other) {
    return other.name == loop.name && other.sequence == loop.sequence;
  });
}

Descriptor openLoop(const std::string& loopName) {
  return openNode(loopName, O_RDONLY);
}

std::vector<std::string> attachedLoopNames() {
  std::vector<std::string> names;
  std::error_code error;
  for (std::filesystem::directory_iterator entry("/sys/block", error), end; !error && entry != end;
       entry.increment(error)) {
    std::error_code none;
    if (std::filesystem::exists(entry->path() / "loop", none)) {
      names.push_back(entry->path().filename());
    }
  }
  return names;
}

bool loopCarries(const Descriptor& loop, const struct stat& image) {
  loop_info64 info = {};
  return ioctl(loop.get(), LOOP_GET_STATUS64, &info) == 0 && info.lo_device == image.st_dev &&
         info.lo_inode == image.st_ino;
}

Result<NewLoop> configureLoop(const ImageFile& image) {
  const Descriptor control(open("/dev/loop-control", O_RDWR | O_CLOEXEC));
  if (!control) return systemError("cannot open /dev/loop-control", errno);
  // Between asking for a free device and taking it, anybody else may take it.
  for (int tries = 0; tries < 50; ++tries) {
    const int number = ioctl(control.get(), LOOP_CTL_GET_FREE);
    if (number < 0) return systemError("no free loop device", errno);
    NewLoop loop{"loop" + std::to_string(number), {}};
    loop.device = openNode(loop.name, image.readOnly ? O_RDONLY : O_RDWR);
    if (!loop.device) return systemError("cannot open /dev/" + loop.name, errno);
    const auto config = configuration(image);
    if (ioctl(loop.device.get(), LOOP_CONFIGURE, &config) == 0) return loop;
    if (errno != EBUSY && errno != ENXIO) {
      return systemError("cannot set up /dev/" + loop.name, errno);
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return Error{"no free loop device: others take each one first"};
}

Result<void> ensurePartition(const Descriptor& loop, const std::string& loopName,
                             const ImageVolume& volume) {
  const std::string wanted = deviceName(loopName, volume.partition);
  const auto known = partitionNames(loopName);
  if (std::find(known.begin(), known.end(), wanted) != known.end()) return {};
  blkpg_partition partition = {};
  partition.start = static_cast<long long>(volume.start);
  partition.length = static_cast<long long>(volume.size);
  partition.pno = volume.partition;
  blkpg_ioctl_arg argument = {};
  argument.op = BLKPG_ADD_PARTITION;
  argument.datalen = sizeof partition;
  argument.data = &partition;
  if (ioctl(loop.get(), BLKPG, &argument) == 0 || errno == EBUSY) return {};
  return systemError("cannot add /dev/" + wanted, errno);
}

void releaseOnLastClose(const Descriptor& loop) {
  loop_info64 info = {};
  if (ioctl(loop.get(), LOOP_GET_STATUS64, &info) != 0) return;
  if (info.lo_flags & LO_FLAGS_AUTOCLEAR) return;
  info.lo_flags |= LO_FLAGS_AUTOCLEAR;
  ioctl(loop.get(), LOOP_SET_STATUS64, &info);
}

void releaseLoop(const LoopDevice& loop) {
  const Descriptor device = openLoop(loop.name);
  std::uint64_t sequence = 0;
  if (!device) return;
  if (loop.sequence != 0 && ioctl(device.get(), BLKGETDISKSEQ, &sequence) == 0 &&
      sequence != loop.sequence) {
    return;
  }
  ioctl(device.get(), LOOP_CLR_FD);
}

bool waitForRelease(const LoopDevice& loop, std::chrono::milliseconds limit) {
  const auto end = std::chrono::steady_clock::now() + limit;
  while (isAttached(loop)) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return true;
}

}  // namespace quillmont
