#include "tests/soak/Vitals.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "tests/support/processes.h"

namespace quillmont::testing {
namespace {

constexpr std::chrono::seconds kUnburied(5 * kSlowness);
constexpr long kMoreDescriptors = 2;
// A sanitizer keeps freed memory for a while.
constexpr long kMoreKibibytes = kSlowness == 1 ? 8 * 1024 : 256 * 1024;

/// In KiB; 0 once the process is gone.
long residentMemory(const std::string& process) {
  const std::string name = "VmRSS:";
  std::ifstream status(process + "/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(name)) return std::stol(line.substr(name.size()));
  }
  return 0;
}

/// But for those that the toolkit paints large areas with: one for each processor, which end when
/// nothing large was painted for half a minute.
long threadsOf(const std::string& process) {
  long count = 0;
  std::error_code error;
  for (std::filesystem::directory_iterator task(process + "/task", error), end;
       !error && task != end; task.increment(error)) {
    std::string name;
    std::getline(std::ifstream(task->path() / "comm"), name);
    if (name != "Thread (pooled)") ++count;
  }
  return count;
}

}  // namespace

void Vitals::sample() {
  const auto process = "/proc/" + std::to_string(pid_);
  const Sample now = {openDescriptors(pid_), threadsOf(process), residentMemory(process)};
  if (now.kibibytes > 0) samples_.push_back(now);
  lookForZombies();
}

void Vitals::lookForZombies() {
  std::map<std::string, Steady::time_point> seen;
  for (const auto& child : zombiesOf(pid_)) {
    const auto known = zombies_.find(child);
    seen[child] = known == zombies_.end() ? Steady::now() : known->second;
    if (Steady::now() - seen[child] > kUnburied) throw Finding("child " + child + " is a zombie");
  }
  zombies_ = std::move(seen);
}

Vitals::Growth Vitals::growthOf(long Sample::*figure) const {
  const auto least = [&](auto first, auto last) {
    long result = *first.*figure;
    for (; first != last; ++first) result = std::min(result, *first.*figure);
    return result;
  };
  Growth result;
  if (samples_.empty()) return result;
  const auto count = static_cast<std::ptrdiff_t>(samples_.size());
  const auto window = std::clamp<std::ptrdiff_t>(count / 5, 1, 60);
  const auto warm = samples_.begin() + count / 5;
  result.least = least(samples_.end() - window, samples_.end());
  result.growth = result.least - least(warm, std::min(warm + window, samples_.end()));
  for (const auto& sample : samples_) result.peak = std::max(result.peak, sample.*figure);
  return result;
}

void Vitals::judge() const {
  const auto check = [](const char* what, const Growth& growth, long bound) {
    if (growth.growth <= bound) return;
    throw Finding(std::string(what) + " grew by " + std::to_string(growth.growth) + " to " +
                  std::to_string(growth.least));
  };
  check("descriptors", descriptors(), kMoreDescriptors);
  check("threads", threads(), 0);
  check("KiB of resident memory", kibibytes(), kMoreKibibytes);
}

}  // namespace quillmont::testing
