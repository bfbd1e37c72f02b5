#include "tests/support/DiskImages.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/loop.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "platform/linux/loop_devices.h"
#include "platform/linux/mount_table.h"
#include "platform/linux/user_folders.h"
#include "platform/posix/Descriptor.h"

namespace quillmont::testing {
namespace {

constexpr std::chrono::seconds kReleaseLimit(5);

std::vector<LoopDevice> loopsBelow(const std::string& folder) {
  auto loops = attachedLoopDevices();
  std::erase_if(loops, [&folder](const LoopDevice& loop) {
    return !loop.backingFile.starts_with(folder + "/");
  });
  return loops;
}

void unmountAll(const std::string& loopName) {
  const auto mounts = readMountTable();
  if (!mounts) return;
  const std::string node = "/dev/" + loopName;
  for (auto mount = mounts->rbegin(); mount != mounts->rend(); ++mount) {
    if (mount->source != node && !mount->source.starts_with(node + "p")) continue;
    umount2(mount->mountPoint.c_str(), MNT_DETACH | UMOUNT_NOFOLLOW);
    if (mount->mountPoint.starts_with("/media/")) rmdir(mount->mountPoint.c_str());
  }
}

void release(const std::string& loopName) {
  const Descriptor device(open(("/dev/" + loopName).c_str(), O_RDONLY | O_CLOEXEC));
  if (device) ioctl(device.get(), LOOP_CLR_FD);
}

}  // namespace

DiskImages::DiskImages(Environment environment) : environment_(std::move(environment)) {
  environment_.try_emplace("XDG_RUNTIME_DIR", work_.path());
  chmod(work_.path().c_str(), 0700);
}

DiskImages::~DiskImages() {
  const auto none = [this] {
    const auto loops = loopsBelow(path());
    for (const auto& loop : loops) {
      unmountAll(loop.name);
      release(loop.name);
    }
    return loops.empty();
  };
  EXPECT_TRUE(eventually(none, kReleaseLimit)) << "an image of the test stays attached";
  rmdir(("/media/" + userName()).c_str());  // stays where there are other volumes
}

std::string DiskImages::whyImpossible() {
  if (geteuid() != 0) return "attaching images by the kernel takes the superuser";
  if (!Descriptor(open("/dev/loop-control", O_RDWR | O_CLOEXEC))) return "no loop devices here";
  static const bool mayMount = [] {
    const TemporaryFolder folder;
    const char* place = folder.path().c_str();
    return mount("none", place, "tmpfs", 0, nullptr) == 0 && umount2(place, 0) == 0;
  }();
  return mayMount ? "" : "nothing may be mounted here";
}

std::string DiskImages::whyImpossible(const std::string& type) {
  if (auto reason = whyImpossible(); !reason.empty()) return reason;
  std::ifstream known("/proc/filesystems");
  for (std::string line; std::getline(known, line);) {
    if (line == "\t" + type) return "";
  }
  return "the kernel knows no " + type;
}

std::string DiskImages::toolPath() {
  return QUILLMONT_BUNDLE "/Contents/libexec/hdiutil";
}

std::string DiskImages::copyToolTo(const std::string& folder) {
  const auto copy = folder + "/hdiutil";
  for (const char* half : {"", "-control"}) {
    std::filesystem::copy_file(toolPath() + half, copy + half);
    chmod((copy + half).c_str(), 0755);
  }
  return copy;
}

std::string DiskImages::realPlace(const std::string& name) {
  return "/media/" + userName() + "/" + name;
}

Outcome DiskImages::tool(const std::vector<std::string>& arguments) const {
  std::vector<std::string> command = {toolPath()};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return run(command, environment_);
}

std::vector<std::string> DiskImages::loopsOf(const std::string& image) {
  std::vector<std::string> names;
  for (const auto& loop : attachedLoopDevices()) {
    if (loop.backingFile == image) names.push_back(loop.name);
  }
  return names;
}

bool DiskImages::make(const std::vector<std::string>& command) {
  const Outcome outcome = run(command);
  EXPECT_EQ(outcome.status, 0) << command.front() << ": " << outcome.standardError;
  return outcome.status == 0;
}

std::string DiskImages::newFile(const std::string& name, int mebibytes) {
  const std::string image = path() + "/" + name;
  std::ofstream(image, std::ios::binary).close();
  EXPECT_EQ(truncate(image.c_str(), off_t{mebibytes} << 20), 0) << image;
  return image;
}

std::string DiskImages::contents() {
  const std::string folder = work_.path() + "/contents";
  mkdir(folder.c_str(), 0755);
  std::ofstream(folder + "/note.txt") << "kept in an image\n";
  return folder;
}

std::string DiskImages::makeExt4(const std::string& name, const std::string& label, int mebibytes) {
  auto image = newFile(name, mebibytes);
  return make({"mkfs.ext4", "-q", "-F", "-L", label, "-d", contents(), image}) ? image : "";
}

std::string DiskImages::makeSquashfs(const std::string& name) {
  std::string image = path() + "/" + name;
  return make({"mksquashfs", contents(), image, "-quiet", "-noappend", "-no-progress"}) ? image
                                                                                        : "";
}

std::string DiskImages::makeBtrfs(const std::string& name, const std::string& label) {
  auto image = newFile(name, 128);
  return make({"mkfs.btrfs", "-q", "-L", label, "-r", contents(), image}) ? image : "";
}

std::string DiskImages::makeFat(const std::string& name, const std::string& label) {
  auto image = newFile(name, 16);
  return make({"mkfs.vfat", "-n", label, image}) ? image : "";
}

std::string DiskImages::makePartitioned(const std::string& name,
                                        const std::vector<std::string>& labels) {
  constexpr int mebibytes = 16;
  const int count = static_cast<int>(labels.size());
  auto image = newFile(name, 2 + mebibytes * count);
  std::ostringstream table;
  table << "label: gpt\n";
  for (int i = 0; i < count; ++i) {
    table << "start=" << 1 + mebibytes * i << "MiB, size=" << mebibytes << "MiB\n";
  }
  if (!make({"sh", "-c", "printf %s \"$1\" | sfdisk --quiet \"$2\"", "sh", table.str(), image})) {
    return "";
  }
  for (int i = 0; i < count; ++i) {
    const auto volume = makeExt4(".volume", labels[static_cast<std::size_t>(i)], mebibytes);
    if (!make({"dd", "if=" + volume, "of=" + image, "bs=1M", "conv=notrunc,sparse", "status=none",
               "seek=" + std::to_string(1 + mebibytes * i)})) {
      return "";
    }
    std::filesystem::remove(volume);
  }
  return image;
}

}  // namespace quillmont::testing
