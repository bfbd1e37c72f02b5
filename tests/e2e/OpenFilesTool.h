// The ground of the open-files tool's tests: a volume, and the questions that are put about it.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/Program.h"
#include "tests/support/forked.h"

namespace quillmont {

using Pids = std::set<pid_t>;

constexpr char kTool[] = QUILLMONT_BUNDLE "/Contents/libexec/lsof";

inline bool opened(const std::string& path, int flags) {
  return open(path.c_str(), flags, 0644) >= 0;
}

inline bool called(const char* name) {
  return prctl(PR_SET_NAME, name) == 0;
}

/// The values of the lines of `tag`.
inline std::vector<std::string> fields(const std::string& output, char tag) {
  std::istringstream lines(output);
  std::vector<std::string> values;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with(tag)) values.push_back(line.substr(1));
  }
  return values;
}

inline Pids pidsIn(const std::string& output) {
  Pids pids;
  for (const auto& pid : fields(output, 'p')) pids.insert(std::stoi(pid));
  return pids;
}

inline testing::Outcome ask(const std::string& path) {
  return testing::run({kTool, "-F", "cpn", path});
}

/// What the lsof of the system says; nothing where there is none.
inline std::optional<testing::Outcome> askLsof(const std::string& path) {
  const auto outcome = testing::run({"lsof", "-w", "-F", "cpn", path},
                                    testing::environmentWith({{"LC_ALL", "C.UTF-8"}}));
  if (outcome.status == 127) return std::nullopt;
  return outcome;
}

/// A volume in a mount table of the test's own, so that nothing of it can stay behind.
class OpenFilesTool : public ::testing::Test {
 protected:
  void SetUp() override {
    static const bool ownTable = testing::canMount() && testing::enterOwnMountTable();
    if (!ownTable) GTEST_SKIP() << "this user may not mount anything";
    chmod(folder_.path().c_str(), 0755);
    ASSERT_NO_FATAL_FAILURE(mountMemory(volume_));
    ASSERT_TRUE(std::ofstream(file_) << std::string(4096, 'x'));
  }

  void TearDown() override {
    for (auto at = mounted_.rbegin(); at != mounted_.rend(); ++at) umount2(at->c_str(), MNT_DETACH);
  }

  void mountMemory(const std::string& path) {
    std::filesystem::create_directories(path);
    ASSERT_EQ(mount("memory", path.c_str(), "tmpfs", 0, nullptr), 0);
    mounted_.push_back(path);
  }

  /// Both tools name exactly these processes.
  void expectUsers(const Pids& pids) const {
    expectUsersHere(pids);
    const auto lsof = askLsof(volume_);
    if (!lsof) return;
    EXPECT_EQ(pidsIn(lsof->standardOutput), pids) << lsof->standardOutput;
  }

  /// As expectUsers(), where lsof cannot answer.
  void expectUsersHere(const Pids& pids) const {
    const auto outcome = ask(volume_);
    EXPECT_EQ(pidsIn(outcome.standardOutput), pids) << outcome.standardOutput;
    EXPECT_EQ(outcome.status, pids.empty() ? 1 : 0);
    EXPECT_EQ(outcome.standardError, "");
  }

  const testing::TemporaryFolder folder_;
  const std::string volume_ = folder_.path() + "/My Volume";
  const std::string file_ = volume_ + "/file";
  std::vector<std::string> mounted_;
};

}  // namespace quillmont
