#include "tests/support/processes.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

namespace quillmont::testing {

bool isZombie(const std::string& pid) {
  std::ostringstream text;
  text << std::ifstream("/proc/" + pid + "/stat").rdbuf();
  const auto stat = text.str();
  const auto nameEnd = stat.rfind(')');
  return nameEnd != stat.npos && stat.substr(nameEnd, 4) == ") Z ";
}

long openDescriptors(pid_t pid) {
  std::error_code gone;
  const std::filesystem::directory_iterator entries("/proc/" + std::to_string(pid) + "/fd", gone);
  return gone ? 0 : std::distance(begin(entries), end(entries));
}

std::vector<std::string> zombiesOf(pid_t pid) {
  std::vector<std::string> result;
  std::error_code gone;
  const auto tasks = "/proc/" + std::to_string(pid) + "/task";
  for (const auto& task : std::filesystem::directory_iterator(tasks, gone)) {
    std::ifstream children(task.path() / "children");
    for (std::string child; children >> child;) {
      if (isZombie(child)) result.push_back(child);
    }
  }
  return result;
}

}  // namespace quillmont::testing
