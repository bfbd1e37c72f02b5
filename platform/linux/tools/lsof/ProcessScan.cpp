#include "platform/linux/tools/lsof/ProcessScan.h"

#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>

#include "platform/linux/tools/lsof/field_output.h"
#include "platform/linux/tools/lsof/memory_maps.h"

namespace quillmont {
namespace {

/// Follows a link of /proc to its file, without a question to the file's file system.
bool look(int folder, const char* link, struct statx& status) {
  constexpr unsigned kMask = STATX_TYPE | STATX_INO | STATX_MNT_ID;
  return statx(folder, link, AT_STATX_DONT_SYNC | AT_NO_AUTOMOUNT, kMask, &status) == 0;
}

/// Whether the system shows us what a process has open.
bool canBeSeen(int process) {
  char first;
  return readlinkat(process, "exe", &first, 1) == 1;
}

std::uint64_t deviceOf(const struct statx& status) {
  return makedev(status.stx_dev_major, status.stx_dev_minor);
}

Descriptor openFolder(int folder, const char* name, int access) {
  return Descriptor(openat(folder, name, access | O_DIRECTORY | O_CLOEXEC));
}

/// Calls `use` with every name in `folder` that begins with a digit.
template <class Use>
void forEachNumber(const Descriptor& folder, Use use) {
  alignas(dirent64) std::array<char, 32768> entries;
  for (;;) {
    const auto size = getdents64(folder.get(), entries.data(), entries.size());
    if (size <= 0) return;
    for (ssize_t at = 0; at < size;) {
      const auto* const entry = reinterpret_cast<const dirent64*>(entries.data() + at);
      if (entry->d_name[0] >= '0' && entry->d_name[0] <= '9') use(entry->d_name);
      at += entry->d_reclen;
    }
  }
}

/// The folder of a thread that still lives, for a process whose first thread has ended: that one
/// has let go of everything. None for a kernel thread, which has no others.
Descriptor livingThread(int process) {
  constexpr unsigned kLinksOfOneThread = 3;
  struct statx status = {};
  Descriptor found;
  if (statx(process, "task", AT_STATX_DONT_SYNC, STATX_NLINK, &status) != 0) return found;
  if (status.stx_nlink <= kLinksOfOneThread) return found;
  const auto threads = openFolder(process, "task", O_RDONLY);
  if (!threads) return found;
  forEachNumber(threads, [&](const char* thread) {
    if (found) return;
    auto folder = openFolder(threads.get(), thread, O_PATH);
    if (folder && look(folder.get(), "exe", status)) found = std::move(folder);
  });
  return found;
}

}  // namespace

ProcessScan::ProcessScan(const std::vector<VolumeIdentity>& volumes)
    : any_(together(volumes)), sockets_(BoundSockets::onVolumes(any_)) {
  for (const auto& identity : volumes) volumes_.push_back({.identity = identity, .report = {}});
}

std::vector<std::string> ProcessScan::reports() {
  const auto processes = openFolder(AT_FDCWD, "/proc", O_RDONLY);
  if (processes) scanAll(processes);
  std::vector<std::string> reports;
  for (auto& volume : volumes_) reports.push_back(std::move(volume.report));
  return reports;
}

void ProcessScan::scanAll(const Descriptor& processes) {
  forEachNumber(processes, [&](const char* pid) {
    const auto folder = openFolder(processes.get(), pid, O_PATH);
    if (!folder) return;
    folder_ = folder.get();
    scanProcess(pid);
  });
}

void ProcessScan::scanProcess(const char* pid) {
  pid_ = pid;
  for (auto& volume : volumes_) volume.named = false;
  mapped_.clear();
  struct statx executable = {};
  int process = folder_;
  Descriptor thread;
  bool knowsExecutable = look(process, "exe", executable);
  if (!knowsExecutable && errno == ENOENT) {
    thread = livingThread(process);
    if (!thread || !look(thread.get(), "exe", executable)) return;
    process = thread.get();
    knowsExecutable = true;
  }
  // Its file system may answer to nobody but its owner, or not at all; the process can be seen.
  if (!knowsExecutable && !canBeSeen(process)) return;
  scanLink(process, "cwd", "cwd");
  scanLink(process, "root", "rtd");
  if (knowsExecutable) {
    for (auto* const volume : volumesOf(executable)) {
      appendLink(*volume, process, "exe", "txt");
      mapped_.emplace_back(deviceOf(executable), executable.stx_ino);
    }
  }
  scanMappings(process);
  scanDescriptors(process);
}

void ProcessScan::scanLink(int process, const char* link, const char* tag) {
  struct statx status = {};
  if (!look(process, link, status)) return;
  for (auto* const volume : volumesOf(status)) appendLink(*volume, process, link, tag);
}

void ProcessScan::scanMappings(int process) {
  const Descriptor maps(openat(process, "maps", O_RDONLY | O_CLOEXEC));
  if (!maps) return;
  for (const auto& file : mappedFiles(maps.get(), any_)) {
    const std::pair key(file.device, file.inode);
    if (std::find(mapped_.begin(), mapped_.end(), key) != mapped_.end()) continue;
    mapped_.push_back(key);
    for (auto& volume : volumes_) {
      if (volume.identity.hasDevice(file.device)) appendFile(volume, "mem", file.name);
    }
  }
}

void ProcessScan::scanDescriptors(int process) {
  const auto descriptors = openFolder(process, "fd", O_RDONLY);
  if (!descriptors) return;
  forEachNumber(descriptors, [&](const char* number) {
    struct statx status = {};
    if (!look(descriptors.get(), number, status)) return;
    for (auto* const volume : volumesOf(status)) {
      appendLink(*volume, descriptors.get(), number, number);
    }
  });
}

std::vector<ProcessScan::Volume*> ProcessScan::volumesOf(const struct statx& status) {
  const auto device = deviceOf(status);
  const bool hasMount = (status.stx_mask & STATX_MNT_ID) != 0;
  std::optional<std::uint64_t> bound;
  if (S_ISSOCK(status.stx_mode)) bound = sockets_.placeOf(device, status.stx_ino);
  const auto belongsTo = [&](const VolumeIdentity& volume) {
    return volume.hasDevice(device) || (hasMount && volume.hasMount(status.stx_mnt_id)) ||
           volume.hasDevice(bound.value_or(device));
  };
  std::vector<Volume*> found;
  if (!belongsTo(any_)) return found;
  for (auto& volume : volumes_) {
    if (belongsTo(volume.identity)) found.push_back(&volume);
  }
  return found;
}

void ProcessScan::appendLink(Volume& volume, int folder, const char* link, std::string_view tag) {
  std::array<char, PATH_MAX> name;
  const auto size = readlinkat(folder, link, name.data(), name.size());
  appendFile(volume, tag,
             std::string_view(name.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0))));
}

void ProcessScan::appendFile(Volume& volume, std::string_view tag, std::string_view name) {
  if (!volume.named) {
    std::array<char, 64> command;
    const Descriptor comm(openat(folder_, "comm", O_RDONLY | O_CLOEXEC));
    const auto size = comm ? read(comm.get(), command.data(), command.size()) : 0;
    std::string_view text(command.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    if (text.ends_with('\n')) text.remove_suffix(1);
    appendField(volume.report, 'p', pid_);
    appendField(volume.report, 'c', text);
    volume.named = true;
  }
  appendField(volume.report, 'f', tag);
  appendField(volume.report, 'n', name);
}

}  // namespace quillmont
