// What lies in the folder of running instances: names divided by NULs. One that ends with a slash
// is a folder. Nobody holds a lock, so there is no other instance.

#include "platform/linux/running_instances.h"

#include <unistd.h>

#include <charconv>
#include <filesystem>
#include <fstream>
#include <string>

#include "tests/fuzz/fuzzing.h"
#include "tests/support/FakeSystem.h"
#include "tests/support/Program.h"

namespace quillmont::testing {
namespace {

namespace fs = std::filesystem;

/// As the program itself spells it.
bool isProcess(const std::string& name) {
  std::int32_t pid = 0;
  std::from_chars(name.data(), name.data() + name.size(), pid);
  return pid > 0 && name == std::to_string(pid);
}

/// Answers how many entries nobody may remove.
std::size_t fill(const std::string& folder, std::string_view names) {
  std::size_t foreign = 0;
  for (int left = 8; left > 0 && !names.empty(); --left) {
    std::string name(takePart(names));
    const bool isFolder = name.ends_with('/');
    if (isFolder) name.pop_back();
    if (name.empty() || name.size() > 200 || name.find('/') != name.npos || name.starts_with('.'))
      continue;
    if (name == std::to_string(getpid()) || fs::exists(folder + "/" + name)) continue;
    if (isFolder) {
      fs::create_directory(folder + "/" + name);
    } else {
      std::ofstream(folder + "/" + name) << "left behind";
    }
    if (isFolder || !isProcess(name)) ++foreign;
  }
  return foreign;
}

}  // namespace

void tryInput(std::string_view input) {
  static const TemporaryFolder home;
  const std::string folder = home.path() + "/instances";
  fs::remove_all(folder);
  fs::create_directory(folder);
  const auto foreign = fill(folder, input);

  RecordingLog log;
  Descriptor registration;
  const auto pids = runningInstances(folder, registration, log);
  require(pids.size() == 1 && pids.front() == getpid(), "nobody else runs");
  require(static_cast<bool>(registration) && log.lines.empty(), "the process is registered");
  const auto left = static_cast<std::size_t>(
      std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
  require(left == foreign + 2, "left locks are swept away, and nothing else is");
}

}  // namespace quillmont::testing
