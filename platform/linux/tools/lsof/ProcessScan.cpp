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

ProcessScan::ProcessScan(VolumeIdentity volume)
    : volume_(std::move(volume)), sockets_(BoundSockets::onVolume(volume_)) {}

std::string ProcessScan::report() {
  report_.clear();
  const auto processes = openFolder(AT_FDCWD, "/proc", O_RDONLY);
  if (!processes) return {};
  forEachNumber(processes, [&](const char* pid) {
    const auto folder = openFolder(processes.get(), pid, O_PATH);
    if (!folder) return;
    folder_ = folder.get();
    scanProcess(pid);
  });
  return std::move(report_);
}

void ProcessScan::scanProcess(const char* pid) {
  pid_ = pid;
  named_ = false;
  mapped_.clear();
  struct statx executable = {};
  int process = folder_;
  Descriptor thread;
  if (!look(process, "exe", executable)) {
    if (errno != ENOENT) return;
    thread = livingThread(process);
    if (!thread || !look(thread.get(), "exe", executable)) return;
    process = thread.get();
  }
  scanLink(process, "cwd", "cwd");
  scanLink(process, "root", "rtd");
  if (belongs(executable)) {
    appendLink(process, "exe", "txt");
    mapped_.emplace_back(deviceOf(executable), executable.stx_ino);
  }
  scanMappings(process);
  scanDescriptors(process);
}

void ProcessScan::scanLink(int process, const char* link, const char* tag) {
  struct statx status = {};
  if (look(process, link, status) && belongs(status)) appendLink(process, link, tag);
}

void ProcessScan::scanMappings(int process) {
  const Descriptor maps(openat(process, "maps", O_RDONLY | O_CLOEXEC));
  if (!maps) return;
  for (const auto& file : mappedFiles(maps.get(), volume_)) {
    const std::pair key(file.device, file.inode);
    if (std::find(mapped_.begin(), mapped_.end(), key) != mapped_.end()) continue;
    mapped_.push_back(key);
    appendFile("mem", file.name);
  }
}

void ProcessScan::scanDescriptors(int process) {
  const auto descriptors = openFolder(process, "fd", O_RDONLY);
  if (!descriptors) return;
  forEachNumber(descriptors, [&](const char* number) {
    struct statx status = {};
    if (look(descriptors.get(), number, status) && belongs(status)) {
      appendLink(descriptors.get(), number, number);
    }
  });
}

bool ProcessScan::belongs(const struct statx& status) const {
  const auto device = deviceOf(status);
  if (volume_.hasDevice(device)) return true;
  if ((status.stx_mask & STATX_MNT_ID) != 0 && volume_.hasMount(status.stx_mnt_id)) return true;
  return S_ISSOCK(status.stx_mode) && sockets_.contains(device, status.stx_ino);
}

void ProcessScan::appendLink(int folder, const char* link, std::string_view tag) {
  std::array<char, PATH_MAX> name;
  const auto size = readlinkat(folder, link, name.data(), name.size());
  appendFile(tag,
             std::string_view(name.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0))));
}

void ProcessScan::appendFile(std::string_view tag, std::string_view name) {
  if (!named_) {
    std::array<char, 64> command;
    const Descriptor comm(openat(folder_, "comm", O_RDONLY | O_CLOEXEC));
    const auto size = comm ? read(comm.get(), command.data(), command.size()) : 0;
    std::string_view text(command.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    if (text.ends_with('\n')) text.remove_suffix(1);
    appendField(report_, 'p', pid_);
    appendField(report_, 'c', text);
    named_ = true;
  }
  appendField(report_, 'f', tag);
  appendField(report_, 'n', name);
}

}  // namespace quillmont
