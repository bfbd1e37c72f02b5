// What the open-files tool costs beside those of the system, as CPU time of the child.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sched.h>
#include <signal.h>
#include <spawn.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "platform/linux/question_series.h"
#include "platform/linux/user_folders.h"

namespace quillmont {
namespace {

namespace fs = std::filesystem;

constexpr int kVolumes = 10;
constexpr char kSystemTool[] = "/usr/bin/lsof";
constexpr char kVolumeUsers[] = "/usr/bin/fuser";

std::string ownTool() {
  return fs::read_symlink("/proc/self/exe").parent_path().parent_path().string() +
         "/Quillmont/Contents/libexec/lsof";
}

double secondsOf(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

/// Runs the program to its end; the CPU time that it has taken, or less than 0 if it does not run.
double spentBy(const std::vector<std::string>& command) {
  std::vector<char*> arguments;
  for (const auto& argument : command) arguments.push_back(const_cast<char*>(argument.c_str()));
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) {
    posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_WRONLY, 0);
  }
  pid_t pid = 0;
  const int failure = posix_spawn(&pid, arguments[0], &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (failure != 0) return -1;
  rusage usage = {};
  wait4(pid, nullptr, 0, &usage);
  return secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime);
}

dev_t deviceOf(const std::string& path) {
  struct stat status = {};
  return stat(path.c_str(), &status) == 0 ? status.st_dev : 0;
}

/// Ten small disk images of the user's, whose volumes this process and its children alone see.
class Volumes {
 public:
  Volumes() {
    char name[] = "/tmp/quillmont-bench.XXXXXX";
    if (unshare(CLONE_NEWNS) != 0 ||
        mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        mount("volumes", "/media", "tmpfs", 0, nullptr) != 0) {
      return;
    }
    if (!mkdtemp(name)) return;
    folder_ = name;
    setenv("XDG_RUNTIME_DIR", name, 1);
    for (int number = 0; number < kVolumes; ++number) {
      const auto place = "/media/" + userName() + "/" + std::to_string(number);
      const auto image = folder_ + "/" + std::to_string(number) + ".img";
      std::ofstream(image).close();
      fs::resize_file(image, 4u << 20);
      fs::create_directories(place);
      static_cast<void>(spentBy({"/sbin/mkfs.ext4", "-q", image}));
      // The loop device goes with the mount.
      static_cast<void>(spentBy({"/bin/mount", "-o", "loop", image, place}));
      if (deviceOf(place) == deviceOf("/media")) return;
      places_.push_back(place);
    }
  }
  ~Volumes() {
    for (const auto& place : places_) umount(place.c_str());
    if (folder_.empty()) return;
    umount("/media");
    fs::remove_all(folder_);
  }
  Volumes(const Volumes&) = delete;
  Volumes& operator=(const Volumes&) = delete;

  bool complete() const { return places_.size() == kVolumes; }
  const std::string& at(int number) const { return places_[static_cast<std::size_t>(number)]; }
  /// As the program knows it.
  static std::string presented(int number) { return "/Volumes/" + std::to_string(number); }

 private:
  std::string folder_;
  std::vector<std::string> places_;
};

const Volumes& volumes() {
  static const Volumes instance;
  return instance;
}

/// Processes that do nothing, each with some files open.
class Crowd {
 public:
  explicit Crowd(std::int64_t size) {
    for (std::int64_t number = 0; number < size; ++number) {
      const pid_t pid = fork();
      if (pid == 0) idle();
      if (pid > 0) members_.push_back(pid);
    }
  }
  ~Crowd() {
    for (const auto pid : members_) kill(pid, SIGKILL);
    for (const auto pid : members_) waitpid(pid, nullptr, 0);
  }
  Crowd(const Crowd&) = delete;
  Crowd& operator=(const Crowd&) = delete;

 private:
  [[noreturn]] static void idle() {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    constexpr int kFiles = 20;
    for (int file = 0; file < kFiles; ++file) static_cast<void>(open("/dev/null", O_RDONLY));
    for (;;) pause();
  }

  std::vector<pid_t> members_;
};

/// `commandsFor` names what is run in an iteration.
template <class CommandsFor>
void measure(benchmark::State& state, const std::string& program, CommandsFor commandsFor) {
  if (access(program.c_str(), X_OK) != 0) return state.SkipWithError(("no " + program).c_str());
  if (!volumes().complete()) return state.SkipWithError("this user may not mount disk images");
  const Crowd crowd(state.range(0));
  for (auto _ : state) {
    double spent = 0;
    for (const auto& command : commandsFor()) spent += spentBy(command);
    state.SetIterationTime(spent);
  }
}

using Commands = std::vector<std::vector<std::string>>;

void openFilesTool(benchmark::State& state) {
  const auto tool = ownTool();
  measure(state, tool, [&] { return Commands{{tool, "-F", "cpn", Volumes::presented(0)}}; });
}

void systemOpenFilesTool(benchmark::State& state) {
  measure(state, kSystemTool, [] { return Commands{{kSystemTool, "-F", "cpn", volumes().at(0)}}; });
}

void listOfVolumeUsers(benchmark::State& state) {
  measure(state, kVolumeUsers, [] { return Commands{{kVolumeUsers, "-m", volumes().at(0)}}; });
}

/// As in a cycle of the program, which says that it asks in series.
void openFilesOfTenVolumes(benchmark::State& state) {
  const auto tool = ownTool();
  setenv(kSeriesVariable, "1", 1);
  measure(state, tool, [&] {
    Commands commands;
    for (int number = 0; number < kVolumes; ++number) {
      commands.push_back({tool, "-F", "cpn", Volumes::presented(number)});
    }
    return commands;
  });
  unsetenv(kSeriesVariable);
}

void registerWith(int crowd, int iterations) {
  const auto add = [&](const char* name, void (*function)(benchmark::State&)) {
    benchmark::RegisterBenchmark(name, function)
        ->Arg(crowd)
        ->UseManualTime()
        ->Iterations(iterations);
  };
  add("openFilesTool", openFilesTool);
  add("openFilesOfTenVolumes", openFilesOfTenVolumes);
  add("listOfVolumeUsers", listOfVolumeUsers);
  add("systemOpenFilesTool", systemOpenFilesTool);
}

const bool registered = [] {
  registerWith(0, 5);
  registerWith(1000, 1);
  return true;
}();

}  // namespace
}  // namespace quillmont
