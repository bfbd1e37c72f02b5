#include "platform/posix/PosixProcessLauncher.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <mutex>
#include <optional>
#include <string_view>
#include <utility>

#include "platform/posix/Descriptor.h"
#include "platform/posix/errors.h"

extern char** environ;

namespace quillmont {
namespace {

constexpr int kPatienceMilliseconds = 100;
constexpr int kLostStatus = 255;

std::vector<std::string> environmentWithPath(const std::string& searchPath) {
  std::vector<std::string> environment;
  for (char** entry = environ; entry && *entry; ++entry) {
    if (!std::string_view(*entry).starts_with("PATH=")) environment.emplace_back(*entry);
  }
  environment.push_back("PATH=" + searchPath);
  return environment;
}

/// What posix_spawn() takes: it never writes to the texts, whatever its types say.
std::vector<char*> pointers(const std::vector<std::string>& texts) {
  std::vector<char*> result;
  result.reserve(texts.size() + 1);
  for (const auto& text : texts) result.push_back(const_cast<char*>(text.c_str()));
  result.push_back(nullptr);
  return result;
}

bool hasNul(const std::vector<std::string>& texts) {
  return std::any_of(texts.begin(), texts.end(),
                     [](const std::string& text) { return text.find('\0') != std::string::npos; });
}

/// Takes `fd` over, close-on-exec and above the standard streams: a program that was started
/// without some of those gets their numbers for its pipes, and the child's streams would collide.
Descriptor aboveStandardStreams(int fd) {
  Descriptor original(fd);
  if (fd <= STDERR_FILENO) {
    return Descriptor(fcntl(fd, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
  }
  fcntl(fd, F_SETFD, FD_CLOEXEC);
  return original;
}

struct Pipe {
  Descriptor read;
  Descriptor write;

  /// An error number, 0 for none. macOS has no pipe2(), so there is a moment in which the ends are
  /// not close-on-exec. No child of this launcher can catch them: each is started with only the
  /// descriptors meant for it.
  int open() {
    int ends[2];
    if (pipe(ends) != 0) return errno;
    read = aboveStandardStreams(ends[0]);
    const int failure = read ? 0 : errno;
    write = aboveStandardStreams(ends[1]);
    return read && write ? 0 : (failure != 0 ? failure : errno);
  }
};

/// The two objects that tell posix_spawn() how to start a child. The first failure is kept.
class SpawnPlan {
 public:
  SpawnPlan() {
    note(posix_spawn_file_actions_init(&actions_));
    note(posix_spawnattr_init(&attributes_));
  }
  ~SpawnPlan() {
    posix_spawn_file_actions_destroy(&actions_);
    posix_spawnattr_destroy(&attributes_);
  }
  SpawnPlan(const SpawnPlan&) = delete;
  SpawnPlan& operator=(const SpawnPlan&) = delete;

  void redirect(const Descriptor& pipe, int stream) {
    if (pipe) note(posix_spawn_file_actions_adddup2(&actions_, pipe.get(), stream));
  }

  void resetSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    note(posix_spawnattr_setsigmask(&attributes_, &signals));
    sigfillset(&signals);
    note(posix_spawnattr_setsigdefault(&attributes_, &signals));
    flags_ |= POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF;
  }

  /// Service managers end what is left of a program's group when the program has ended: not before
  /// the uninstall script has done its work.
  void leaveProcessGroup() {
    note(posix_spawnattr_setpgroup(&attributes_, 0));
    flags_ |= POSIX_SPAWN_SETPGROUP;
  }

  /// Also those descriptors that the program itself was given by whoever started it. To be called
  /// after redirect().
  void closeOtherDescriptors() {
#ifdef POSIX_SPAWN_CLOEXEC_DEFAULT
    flags_ |= POSIX_SPAWN_CLOEXEC_DEFAULT;
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
      if (fcntl(stream, F_GETFD) < 0) continue;
      note(posix_spawn_file_actions_addinherit_np(&actions_, stream));
    }
#else
    note(posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1));
#endif
  }

  /// An error number, 0 for a child that runs.
  int start(pid_t& pid, const std::vector<std::string>& arguments,
            const std::vector<std::string>& environment) {
    note(posix_spawnattr_setflags(&attributes_, static_cast<short>(flags_)));
    if (failure_ != 0) return failure_;
    return posix_spawn(&pid, arguments[0].c_str(), &actions_, &attributes_,
                       pointers(arguments).data(), pointers(environment).data());
  }

 private:
  void note(int failure) {
    if (failure_ == 0) failure_ = failure;
  }

  posix_spawn_file_actions_t actions_;
  posix_spawnattr_t attributes_;
  int flags_ = 0;
  int failure_ = 0;
};

/// Collects the status of `pid`; nothing while it runs, if `options` say not to wait for it.
std::optional<int> collect(pid_t pid, int options) {
  int status = 0;
  pid_t answer;
  do {
    answer = waitpid(pid, &status, options);
  } while (answer < 0 && errno == EINTR);
  if (answer == 0) return std::nullopt;
  if (answer < 0) return kLostStatus;
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

/// What is kept of a stream: all of it, up to a limit. A tool gone mad must not fill the memory.
struct Kept {
  std::string text;
  std::size_t limit = 0;

  void add(const char* bytes, std::size_t count) {
    text.append(bytes, std::min(count, limit - text.size()));
  }
};

/// Reads once from `stream`, and closes it at its end. Returns the number of bytes.
int takeSome(Descriptor& stream, Kept& kept) {
  char buffer[65536];
  const auto count = read(stream.get(), buffer, sizeof buffer);
  if (count == 0 || (count < 0 && errno != EINTR)) stream.reset();
  if (count <= 0) return 0;
  kept.add(buffer, static_cast<std::size_t>(count));
  return static_cast<int>(count);
}

/// Takes what an ended child left in `stream`, and no more: somebody who inherited the other end
/// may be writing without pause.
void takeRest(Descriptor& stream, Kept& kept) {
  int left = 0;
  if (stream && ioctl(stream.get(), FIONREAD, &left) != 0) left = 0;
  while (stream && left > 0) left -= takeSome(stream, kept);
  stream.reset();
}

}  // namespace

/// The children nobody waits for.
class PosixProcessLauncher::DroppedChildren {
 public:
  void add(pid_t pid) {
    const std::lock_guard guard(lock_);
    pids_.push_back(pid);
  }

  void reapEnded() {
    const std::lock_guard guard(lock_);
    std::erase_if(pids_, [](pid_t pid) { return collect(pid, WNOHANG).has_value(); });
  }

 private:
  std::mutex lock_;
  std::vector<pid_t> pids_;
};

class PosixProcessLauncher::Child : public ChildProcess {
 public:
  Child(pid_t pid, Descriptor output, std::size_t outputLimit, Descriptor error,
        std::shared_ptr<DroppedChildren> dropped)
      : pid_(pid),
        output_(std::move(output)),
        error_(std::move(error)),
        dropped_(std::move(dropped)),
        outputKept_{{}, outputLimit} {}

  ~Child() override {
    if (!status_) dropped_->add(pid_);
  }

  int waitUntilExit() override {
    // The usual end is that of the pipes; the looks at the child itself are for pipes that a
    // grandchild keeps open.
    while (!status_ && (output_ || error_)) {
      takeWhatComes();
      status_ = collect(pid_, WNOHANG);
    }
    if (!status_) status_ = collect(pid_, 0);
    takeRest(output_, outputKept_);
    takeRest(error_, nothingKept_);
    return *status_;
  }

  std::string readStandardOutput() override { return outputKept_.text; }

 private:
  void takeWhatComes() {
    // poll() passes over a stream that is closed, and so -1.
    pollfd streams[2] = {{output_.get(), POLLIN, 0}, {error_.get(), POLLIN, 0}};
    if (poll(streams, 2, kPatienceMilliseconds) <= 0) return;
    if (streams[0].revents != 0) takeSome(output_, outputKept_);
    if (streams[1].revents != 0) takeSome(error_, nothingKept_);
  }

  const pid_t pid_;
  Descriptor output_;
  Descriptor error_;
  const std::shared_ptr<DroppedChildren> dropped_;
  Kept outputKept_;
  Kept nothingKept_;
  std::optional<int> status_;
};

PosixProcessLauncher::PosixProcessLauncher(const std::string& searchPath, std::size_t outputLimit)
    : environment_(environmentWithPath(searchPath)),
      outputLimit_(outputLimit),
      dropped_(std::make_shared<DroppedChildren>()) {
  // An ignored SIGCHLD outlives exec, and would lose the status of every child.
  struct sigaction action = {};
  if (sigaction(SIGCHLD, nullptr, &action) == 0 && action.sa_handler == SIG_IGN) {
    signal(SIGCHLD, SIG_DFL);
  }
}

PosixProcessLauncher::~PosixProcessLauncher() = default;

Result<std::unique_ptr<ChildProcess>> PosixProcessLauncher::launch(const Command& command) {
  dropped_->reapEnded();
  std::vector<std::string> arguments = {command.path};
  arguments.insert(arguments.end(), command.arguments.begin(), command.arguments.end());
  if (hasNul(arguments)) return Error{errorText(EINVAL)};

  Pipe output;
  Pipe error;
  int failure = 0;
  if (command.standardOutput == ChildOutput::pipe) failure = output.open();
  if (failure == 0 && command.standardError == ChildOutput::pipe) failure = error.open();
  if (failure != 0) return Error{errorText(failure)};

  SpawnPlan plan;
  plan.redirect(output.write, STDOUT_FILENO);
  plan.redirect(error.write, STDERR_FILENO);
  plan.resetSignals();
  plan.leaveProcessGroup();
  plan.closeOtherDescriptors();
  pid_t pid = 0;
  failure = plan.start(pid, arguments, environment_);
  if (failure != 0) return Error{errorText(failure)};
  return std::unique_ptr<ChildProcess>(std::make_unique<Child>(
      pid, std::move(output.read), outputLimit_, std::move(error.read), dropped_));
}

}  // namespace quillmont
