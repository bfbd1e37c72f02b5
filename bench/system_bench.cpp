// What the host's parts add to the system calls that they are made of.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "platform/linux/PropertyListDefaults.h"
#include "platform/linux/StderrLog.h"
#include "platform/linux/XmlPropertyLists.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/PosixProcessLauncher.h"

namespace quillmont {
namespace {

namespace fs = std::filesystem;

constexpr char kTool[] = "/bin/echo";

void startToolAndRead(benchmark::State& state) {
  PosixProcessLauncher launcher("/usr/bin:/bin");
  for (auto _ : state) {
    auto child = launcher.launch({.path = kTool,
                                  .arguments = {"answer"},
                                  .standardOutput = ChildOutput::pipe,
                                  .standardError = ChildOutput::pipe});
    (*child)->waitUntilExit();
    benchmark::DoNotOptimize((*child)->readStandardOutput());
  }
}
BENCHMARK(startToolAndRead)->UseRealTime();

void bareSpawnAndRead(benchmark::State& state) {
  char name[] = "echo";
  char word[] = "answer";
  char* const arguments[] = {name, word, nullptr};
  for (auto _ : state) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return state.SkipWithError("no pipe");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    pid_t pid = 0;
    posix_spawn(&pid, kTool, &actions, nullptr, arguments, environ);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    char answer[64];
    while (read(ends[0], answer, sizeof answer) > 0) benchmark::DoNotOptimize(answer);
    close(ends[0]);
    waitpid(pid, nullptr, 0);
  }
}
BENCHMARK(bareSpawnAndRead)->UseRealTime();

/// A folder beside the program: one in memory would make the writes look free.
class Folder {
 public:
  Folder() : path_(fs::read_symlink("/proc/self/exe").parent_path() / "settings") {
    fs::remove_all(path_);
    fs::create_directory(path_);
  }
  ~Folder() { fs::remove_all(path_); }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  const fs::path& path() const { return path_; }

 private:
  const fs::path path_;
};

std::string settingsAfterOneWrite(const Folder& folder) {
  std::ifstream file(folder.path() / "bench.plist", std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void writeSetting(benchmark::State& state) {
  const Folder folder;
  const XmlPropertyLists coder;
  StderrLog log;
  PropertyListDefaults defaults(folder.path(), "bench", coder, log);
  double value = 0;
  for (auto _ : state) defaults.setDouble("timeout", ++value);
}
BENCHMARK(writeSetting)->UseRealTime();

void bareReplaceOfTheSame(benchmark::State& state) {
  const Folder folder;
  const XmlPropertyLists coder;
  StderrLog log;
  PropertyListDefaults(folder.path(), "bench", coder, log).setDouble("timeout", 1);
  const auto bytes = settingsAfterOneWrite(folder);
  const auto target = (folder.path() / "bench.plist").string();
  const auto draft = target + ".new";
  const Descriptor parent(open(folder.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  for (auto _ : state) {
    const Descriptor file(open(draft.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
    if (write(file.get(), bytes.data(), bytes.size()) < 0) return state.SkipWithError("no write");
    fsync(file.get());
    std::rename(draft.c_str(), target.c_str());
    fsync(parent.get());
  }
}
BENCHMARK(bareReplaceOfTheSame)->UseRealTime();

}  // namespace
}  // namespace quillmont
