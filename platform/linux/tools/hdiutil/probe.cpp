#include "platform/linux/tools/hdiutil/probe.h"

#include <blkid/blkid.h>

#include <cstring>
#include <memory>
#include <optional>

namespace quillmont {
namespace {

using Probe = std::unique_ptr<blkid_struct_probe, void (*)(blkid_probe)>;

constexpr std::uint64_t kSector = 512;  // the unit of libblkid's partitions, whatever the device's

Probe newProbe(int fd, std::uint64_t start, std::uint64_t size) {
  Probe probe(blkid_new_probe(), blkid_free_probe);
  const auto offset = static_cast<blkid_loff_t>(start);
  if (probe && blkid_probe_set_device(probe.get(), fd, offset, static_cast<blkid_loff_t>(size))) {
    probe.reset();
  }
  return probe;
}

std::string value(blkid_probe probe, const char* name) {
  const char* data = nullptr;
  std::size_t length = 0;
  if (blkid_probe_lookup_value(probe, name, &data, &length) != 0 || !data) return {};
  return std::string(data, strnlen(data, length));
}

/// The file system in that range of the image, if there is exactly one.
std::optional<ImageVolume> fileSystem(int fd, std::uint64_t start, std::uint64_t size) {
  const Probe probe = newProbe(fd, start, size);
  if (!probe) return std::nullopt;
  blkid_probe_enable_superblocks(probe.get(), 1);
  blkid_probe_set_superblocks_flags(
      probe.get(), BLKID_SUBLKS_LABEL | BLKID_SUBLKS_UUID | BLKID_SUBLKS_TYPE | BLKID_SUBLKS_USAGE);
  if (blkid_do_safeprobe(probe.get()) != 0) return std::nullopt;
  if (value(probe.get(), "USAGE") != "filesystem") return std::nullopt;
  return ImageVolume{.partition = 0,
                     .start = start,
                     .size = size,
                     .type = value(probe.get(), "TYPE"),
                     .label = value(probe.get(), "LABEL"),
                     .uuid = value(probe.get(), "UUID")};
}

std::vector<ImageVolume> partitionedVolumes(int fd) {
  std::vector<ImageVolume> volumes;
  const Probe probe = newProbe(fd, 0, 0);
  if (!probe) return volumes;
  blkid_probe_enable_superblocks(probe.get(), 0);
  blkid_probe_enable_partitions(probe.get(), 1);
  const auto list = blkid_probe_get_partitions(probe.get());
  const int count = list ? blkid_partlist_numof_partitions(list) : 0;
  for (int i = 0; i < count; ++i) {
    const auto partition = blkid_partlist_get_partition(list, i);
    if (!partition || blkid_partition_is_extended(partition)) continue;
    const auto start = static_cast<std::uint64_t>(blkid_partition_get_start(partition)) * kSector;
    const auto size = static_cast<std::uint64_t>(blkid_partition_get_size(partition)) * kSector;
    if (size == 0) continue;
    if (auto volume = fileSystem(fd, start, size)) {
      volume->partition = blkid_partition_get_partno(partition);
      volumes.push_back(std::move(*volume));
    }
  }
  return volumes;
}

}  // namespace

Result<std::vector<ImageVolume>> probeImage(int fd) {
  if (auto whole = fileSystem(fd, 0, 0)) return std::vector{std::move(*whole)};
  auto volumes = partitionedVolumes(fd);
  if (volumes.empty()) return Error{"no mountable file systems"};
  return volumes;
}

}  // namespace quillmont
