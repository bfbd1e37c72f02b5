// The search through /proc for the processes that use a volume.
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
  explicit ProcessScan(VolumeIdentity volume);

  /// The field lines of every process with a working directory, root, executable, mapping or
  /// descriptor on the volume, in the order of /proc; empty if there is none.
  std::string report();

 private:
  void scanProcess(const char* pid);
  void scanLink(int process, const char* link, const char* tag);
  void scanMappings(int process);
  void scanDescriptors(int process);
  bool belongs(const struct statx& status) const;
  void appendFile(std::string_view tag, std::string_view name);
  void appendLink(int folder, const char* link, std::string_view tag);

  const VolumeIdentity volume_;
  const BoundSockets sockets_;
  std::string report_;

  // The process at hand.
  const char* pid_ = nullptr;
  int folder_ = -1;                                              ///< /proc/PID
  bool named_ = false;                                           ///< its p and c lines are written
  std::vector<std::pair<std::uint64_t, std::uint64_t>> mapped_;  ///< device, inode: told already
};

}  // namespace quillmont
