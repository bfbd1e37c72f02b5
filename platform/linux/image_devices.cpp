#include "platform/linux/image_devices.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <map>

namespace quillmont {
namespace {

namespace fs = std::filesystem;

constexpr int kMappingsDeep = 8;  // more than anybody stacks on one another

std::optional<std::string> searchBelow(const fs::path& folder, int deepest) {
  std::error_code error;
  const fs::path device = fs::canonical(folder, error);
  if (error) return std::nullopt;
  if (fs::exists(device / "loop", error)) return device.filename().string();
  if (deepest == 0) return std::nullopt;
  if (fs::exists(device / "partition", error))
    return searchBelow(device.parent_path(), deepest - 1);
  for (fs::directory_iterator slave(device / "slaves", error), end; !error && slave != end;
       slave.increment(error)) {
    if (auto found = searchBelow(slave->path(), deepest - 1)) return found;
  }
  return std::nullopt;
}

/// A file system of a program of some user, who names as its source whatever he likes. "fuseblk" is
/// another thing: there the kernel itself has opened the device.
bool isOfAProgram(const Mount& mount) {
  return mount.type == "fuse" || mount.type.starts_with("fuse.");
}

}  // namespace

std::optional<std::string> loopBelow(const std::string& folder) {
  return searchBelow(folder, kMappingsDeep);
}

/// Device numbers of the mount table are no guide (btrfs has its own), so the node itself is asked.
/// Only nodes below /dev are: any other source may lie on a file system that does not answer.
std::optional<std::string> loopOfSource(const std::string& source) {
  if (!source.starts_with("/dev/")) return std::nullopt;
  struct stat status = {};
  if (stat(source.c_str(), &status) == 0) {
    if (!S_ISBLK(status.st_mode)) return std::nullopt;
    return loopBelow("/sys/dev/block/" + std::to_string(major(status.st_rdev)) + ":" +
                     std::to_string(minor(status.st_rdev)));
  }
  return loopBelow("/sys/class/block/" + source.substr(source.rfind('/') + 1));
}

std::vector<VolumeMount> imageMounts(const std::vector<Mount>& mounts, const LoopFinder& loopOf) {
  std::vector<VolumeMount> found;
  for (const auto& mount : mounts) {
    if (isOfAProgram(mount)) continue;
    if (const auto loop = loopOf(mount.source)) found.push_back({*loop, mount.source, mount});
  }
  return found;
}

bool isVolume(const Mount& mount) {
  return mount.root == "/" || mount.type == "btrfs";
}

std::vector<std::string> partitionNames(const std::string& loopName, const std::string& sysBlock) {
  const std::string prefix = loopName + "p";
  std::map<unsigned, std::string> names;
  std::error_code error;
  for (fs::directory_iterator entry(sysBlock + "/" + loopName, error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string name = entry->path().filename().string();
    if (!name.starts_with(prefix)) continue;
    unsigned number = 0;
    const auto last = name.data() + name.size();
    const auto result = std::from_chars(name.data() + prefix.size(), last, number);
    if (result.ec == std::errc() && result.ptr == last) names.emplace(number, name);
  }
  std::vector<std::string> ordered;
  ordered.reserve(names.size());
  for (const auto& [number, name] : names) ordered.push_back(name);
  return ordered;
}

std::string deviceName(const std::string& loopName, int partition) {
  return partition == 0 ? loopName : loopName + "p" + std::to_string(partition);
}

}  // namespace quillmont
