// The search through /proc for the processes that use some volumes.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/linux/tools/lsof/BoundSockets.h"
#include "platform/linux/tools/lsof/VolumeIdentity.h"
#include "platform/posix/Descriptor.h"

struct statx;

namespace quillmont {

/// One pass over all processes. It looks at files only through the links in /proc, with what the
/// kernel has in memory, and follows no path of another process: a file system that hangs somewhere
/// else cannot make it wait. Processes that end meanwhile, or that the caller may not look at, are
/// passed over. Of a process's threads the first living one stands for all.
class ProcessScan {
 public:
  explicit ProcessScan(const std::vector<VolumeIdentity>& volumes);

  /// For each of the volumes, in their order: the field lines of every process with a working
  /// directory, root, executable, mapping or descriptor on it, in the order of /proc; empty if
  /// there is none.
  std::vector<std::string> reports();

 private:
  struct Volume {
    VolumeIdentity identity;
    std::string report;
    bool named = false;  ///< the p and c lines of the process at hand are written
  };

  void scanAll(const Descriptor& processes);
  void scanProcess(const char* pid);
  void scanLink(int process, const char* link, const char* tag);
  void scanMappings(int process);
  void scanDescriptors(int process);
  std::vector<Volume*> volumesOf(const struct statx& status);
  void appendFile(Volume& volume, std::string_view tag, std::string_view name);
  void appendLink(Volume& volume, int folder, const char* link, std::string_view tag);

  std::vector<Volume> volumes_;
  const VolumeIdentity any_;  ///< what belongs to any of them
  const BoundSockets sockets_;

  // The process at hand.
  const char* pid_ = nullptr;
  int folder_ = -1;                                              ///< /proc/PID
  std::vector<std::pair<std::uint64_t, std::uint64_t>> mapped_;  ///< device, inode: told already
};

}  // namespace quillmont
