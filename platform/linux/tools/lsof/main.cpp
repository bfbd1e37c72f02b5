// The open-files tool: which processes use a volume.

#include <unistd.h>

#include <iostream>
#include <string>
#include <string_view>

#include "platform/linux/ghosts.h"
#include "platform/linux/image_devices.h"
#include "platform/linux/mount_table.h"
#include "platform/linux/tools/lsof/ProcessScan.h"
#include "platform/linux/tools/lsof/VolumeIdentity.h"
#include "platform/linux/user_folders.h"
#include "platform/posix/files.h"

namespace {

constexpr int kUsage = 2;

int fail(int status, const std::string& line) {
  std::cerr << line << '\n';
  return status;
}

int listOpenFiles(const std::string& path) {
  using namespace quillmont;
  const auto mounts = readMountTable();
  if (!mounts) return fail(1, "lsof: " + mounts.errorText());
  const auto volume = identifyVolume(path, userName(), *mounts, imageMounts(*mounts),
                                     livingGhosts(), cachedMountPointStatus);
  if (!volume) return fail(1, "lsof: no volume is mounted at " + path);
  const auto report = ProcessScan(*volume).report();
  if (report.empty()) return 1;
  const auto written = writeAll(STDOUT_FILENO, report);
  if (!written) return fail(1, "lsof: " + written.errorText());
  return 0;
}

}  // namespace

int main(int argc, char* argv[]) {
  const bool understood =
      argc == 4 && std::string_view(argv[1]) == "-F" && std::string_view(argv[2]) == "cpn";
  if (!understood) return fail(kUsage, "usage: lsof -F cpn <mount point>");
  return listOpenFiles(argv[3]);
}
