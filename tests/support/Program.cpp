#include "tests/support/Program.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>
#include <string_view>

#include "platform/posix/Descriptor.h"

extern char** environ;

namespace quillmont::testing {
namespace {

using std::chrono::milliseconds;
using Steady = std::chrono::steady_clock;

std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> result;
  for (auto& text : texts) result.push_back(text.data());
  result.push_back(nullptr);
  return result;
}

[[noreturn]] void becomeChild(std::vector<char*>& arguments, std::vector<char*>& environment,
                              int output, int error, uid_t user) {
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  dup2(output, STDOUT_FILENO);
  dup2(error, STDERR_FILENO);
  if (user != 0 && (setgid(user) != 0 || setuid(user) != 0)) _exit(126);
  environ = environment.data();
  execvp(arguments[0], arguments.data());
  _exit(127);
}

/// fork and exec; the child's outputs go to the two descriptors.
pid_t start(const std::vector<std::string>& arguments, const Environment& environment, int output,
            int error, uid_t user) {
  auto argumentTexts = arguments;
  std::vector<std::string> environmentTexts;
  for (const auto& [name, value] : environment.empty() ? environmentWith({}) : environment) {
    environmentTexts.push_back(name + "=" + value);
  }
  auto argumentPointers = pointers(argumentTexts);
  auto environmentPointers = pointers(environmentTexts);
  const pid_t pid = fork();
  if (pid == 0) becomeChild(argumentPointers, environmentPointers, output, error, user);
  if (pid < 0) throw std::runtime_error("fork failed");
  return pid;
}

struct Pipe {
  Descriptor read, write;
  Pipe() {
    int ends[2];
    if (pipe(ends) != 0) throw std::runtime_error("pipe failed");
    read = Descriptor(ends[0]);
    write = Descriptor(ends[1]);
    for (const int end : ends) fcntl(end, F_SETFD, FD_CLOEXEC);
  }
};

int exitStatus(int waitStatus) {
  return WIFSIGNALED(waitStatus) ? 128 + WTERMSIG(waitStatus) : WEXITSTATUS(waitStatus);
}

/// Appends what `fd` has; false at its end.
bool take(int fd, std::string& text) {
  char buffer[65536];
  const auto count = read(fd, buffer, sizeof buffer);
  if (count > 0) text.append(buffer, static_cast<std::size_t>(count));
  return count > 0;
}

}  // namespace

Environment environmentWith(const Environment& changes) {
  Environment result;
  for (char** entry = environ; *entry; ++entry) {
    const std::string_view text = *entry;
    const auto equals = text.find('=');
    if (equals != text.npos) result[std::string(text.substr(0, equals))] = text.substr(equals + 1);
  }
  for (const auto& [name, value] : changes) {
    if (value.empty()) {
      result.erase(name);
    } else {
      result[name] = value;
    }
  }
  return result;
}

Outcome run(const std::vector<std::string>& arguments, const Environment& environment,
            std::chrono::seconds limit) {
  Outcome outcome;
  Pipe output, error;
  const pid_t pid =
      start(arguments, environment, output.write.get(), error.write.get(), /*user=*/0);
  output.write.reset();
  error.write.reset();
  const auto end = Steady::now() + limit;
  pollfd streams[2] = {{output.read.get(), POLLIN, 0}, {error.read.get(), POLLIN, 0}};
  while (streams[0].fd >= 0 || streams[1].fd >= 0) {
    const auto left = std::chrono::duration_cast<milliseconds>(end - Steady::now()).count();
    if (left <= 0 || poll(streams, 2, static_cast<int>(left)) == 0) {
      kill(pid, SIGKILL);
      break;
    }
    if (streams[0].revents && !take(streams[0].fd, outcome.standardOutput)) streams[0].fd = -1;
    if (streams[1].revents && !take(streams[1].fd, outcome.standardError)) streams[1].fd = -1;
  }
  int status = 0;
  waitpid(pid, &status, 0);
  outcome.status = exitStatus(status);
  return outcome;
}

Program::Program(const std::vector<std::string>& arguments, const Environment& environment,
                 uid_t user) {
  Pipe output;
  pid_ = start(arguments, environment, output.write.get(), output.write.get(), user);
  pipe_ = output.read.release();
}

Program::~Program() {
  if (running()) {
    kill(pid_, SIGKILL);
    waitForExit(std::chrono::seconds(10));
  }
  close(pipe_);
}

void Program::collect(milliseconds atMost) {
  pollfd stream = {pipe_, POLLIN, 0};
  while (poll(&stream, 1, static_cast<int>(atMost.count())) > 0) {
    if (!take(pipe_, output_)) {
      if (atMost.count() > 0) usleep(1000);
      return;
    }
    atMost = milliseconds(0);
  }
}

std::string Program::output() {
  collect(milliseconds(0));
  return output_;
}

bool Program::waitForOutput(const std::string& text, milliseconds limit, int count) {
  const auto end = Steady::now() + limit;
  for (;;) {
    collect(milliseconds(10));
    int found = 0;
    for (auto at = output_.find(text); at != std::string::npos; at = output_.find(text, at + 1)) {
      ++found;
    }
    if (found >= count) return true;
    if (Steady::now() > end) return false;
  }
}

bool Program::running() {
  if (pid_ < 0 || status_ >= 0) return false;
  int status = 0;
  if (waitpid(pid_, &status, WNOHANG) != pid_) return true;
  status_ = exitStatus(status);
  return false;
}

void Program::signal(int number) {
  if (running()) kill(pid_, number);
}

int Program::waitForExit(milliseconds limit) {
  const auto end = Steady::now() + limit;
  while (running() && Steady::now() < end) collect(milliseconds(10));
  collect(milliseconds(0));
  return status_;
}

TemporaryFolder::TemporaryFolder() {
  std::string pattern = std::filesystem::temp_directory_path() / "quillmont-test-XXXXXX";
  if (!mkdtemp(pattern.data())) throw std::runtime_error("mkdtemp failed");
  path_ = pattern;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

}  // namespace quillmont::testing
