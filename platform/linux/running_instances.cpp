#include "platform/linux/running_instances.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <memory>
#include <optional>
#include <string_view>
#include <system_error>
#include <thread>
#include <tuple>

#include "platform/Result.h"
#include "platform/posix/errors.h"

namespace quillmont {
namespace {

constexpr std::chrono::milliseconds kGateRetry(5);

struct Instance {
  timespec started = {};
  std::int32_t pid = 0;
};

bool startedBefore(const Instance& a, const Instance& b) {
  return std::tie(a.started.tv_sec, a.started.tv_nsec, a.pid) <
         std::tie(b.started.tv_sec, b.started.tv_nsec, b.pid);
}

std::string lockPath(const std::string& folder, std::int32_t pid) {
  return folder + "/" + std::to_string(pid);
}

/// The closed gate, or none when somebody else kept it closed all the time.
Descriptor closeGate(const std::string& folder, Log& log, std::chrono::milliseconds patience) {
  const auto path = folder + "/.gate";
  Descriptor gate(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
  if (!gate) {
    log.write(systemError("Cannot open " + path, errno).text);
    return gate;
  }
  const auto end = std::chrono::steady_clock::now() + patience;
  while (flock(gate.get(), LOCK_EX | LOCK_NB) != 0) {
    if (std::chrono::steady_clock::now() >= end) {
      log.write("Another starting instance does not answer, going on without it");
      return Descriptor();
    }
    std::this_thread::sleep_for(kGateRetry);
  }
  return gate;
}

std::optional<std::int32_t> pidOfName(std::string_view name) {
  std::int32_t pid = 0;
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), pid);
  if (error != std::errc() || end != name.data() + name.size() || pid <= 0) return std::nullopt;
  return pid;
}

/// The instance `pid` if it lives. A shared lock serves to find out: two that look at one moment do
/// not take each other for the owner. A lock that its owner has left behind is removed if `tidy`.
std::optional<Instance> livingInstance(const std::string& folder, std::int32_t pid, bool tidy) {
  const auto path = lockPath(folder, pid);
  const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
  struct stat status = {};
  if (!file || fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  if (flock(file.get(), LOCK_SH | LOCK_NB) == 0) {
    if (tidy) unlink(path.c_str());
    return std::nullopt;
  }
  if (errno != EWOULDBLOCK) return std::nullopt;  // a file system without such locks
  return Instance{status.st_mtim, pid};
}

std::vector<Instance> otherInstances(const std::string& folder, bool tidy) {
  std::vector<Instance> result;
  const std::unique_ptr<DIR, int (*)(DIR*)> names(opendir(folder.c_str()), &closedir);
  if (!names) return result;
  while (const dirent* entry = readdir(names.get())) {
    const auto pid = pidOfName(entry->d_name);
    if (!pid || *pid == getpid()) continue;
    if (const auto instance = livingInstance(folder, *pid, tidy)) result.push_back(*instance);
  }
  return result;
}

/// The lock appears under its name only when it is held: nobody can ever take it for a left one.
Result<Descriptor> registerInstance(const std::string& folder) {
  const auto path = lockPath(folder, getpid());
  const auto hidden = folder + "/.starting-" + std::to_string(getpid());
  unlink(hidden.c_str());
  Descriptor lock(open(hidden.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600));
  if (!lock) return systemError("Cannot create " + hidden, errno);
  if (flock(lock.get(), LOCK_EX | LOCK_NB) == 0 && rename(hidden.c_str(), path.c_str()) == 0) {
    return lock;
  }
  const auto failure = systemError("Cannot create " + path, errno);
  unlink(hidden.c_str());
  return failure;
}

/// Registers first and looks then, so that of two processes that have both come past the gate at
/// least one sees the other.
std::vector<Instance> registerAlone(const std::string& folder, Descriptor& registration, Log& log,
                                    bool tidy) {
  auto lock = registerInstance(folder);
  if (!lock) {
    log.write(lock.errorText());
    return otherInstances(folder, tidy);
  }
  auto others = otherInstances(folder, tidy);
  if (others.empty()) {
    registration = std::move(*lock);
  } else {
    unlink(lockPath(folder, getpid()).c_str());
  }
  return others;
}

Instance ownInstance(const Descriptor& registration) {
  struct stat status = {};
  fstat(registration.get(), &status);
  return {status.st_mtim, getpid()};
}

}  // namespace

std::vector<std::int32_t> runningInstances(const std::string& folder, Descriptor& registration,
                                           Log& log, std::chrono::milliseconds patience) {
  const auto gate = closeGate(folder, log, patience);
  // What only seems to be left behind is better not removed while others may be at it too.
  const bool tidy = static_cast<bool>(gate);
  auto instances = otherInstances(folder, tidy);
  if (!registration && instances.empty()) {
    instances = registerAlone(folder, registration, log, tidy);
  }
  if (registration) instances.push_back(ownInstance(registration));
  std::sort(instances.begin(), instances.end(), startedBefore);
  std::vector<std::int32_t> pids;
  pids.reserve(instances.size() + 1);
  for (const auto& instance : instances) pids.push_back(instance.pid);
  if (!registration) pids.push_back(getpid());
  return pids;
}

}  // namespace quillmont
