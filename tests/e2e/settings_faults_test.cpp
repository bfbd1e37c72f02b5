// The write of a setting, with each of its system calls failing in turn, and with the process
// killed at each of them.

#include <gmock/gmock.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <sstream>

#include "platform/linux/XmlPropertyLists.h"
#include "platform/posix/files.h"
#include "tests/support/Program.h"

namespace quillmont::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::AnyOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr char kDomain[] = "com.example.Faults";
constexpr char kFile[] = "com.example.Faults.plist";
constexpr int kOld = 1;
constexpr int kNew = 2;

/// One system call of the write: its name, and which one of that name it is since the start.
struct SystemCall {
  std::string name;
  int number = 0;
};

/// What a system call of this name stands for in the log of `strace`; empty for other lines.
std::string callName(const std::string& line) {
  const auto name = line.substr(0, line.find('('));
  const bool isCall = !name.empty() && name.size() < line.size() &&
                      name.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789_") == name.npos;
  return isCall ? name : "";
}

class SettingsFaults : public ::testing::Test {
 protected:
  void SetUp() override {
    const auto traced = run({"strace", "-o", "/dev/null", "true"});
    if (traced.status == 127) GTEST_SKIP() << "this machine has no strace";
    if (traced.status != 0) GTEST_SKIP() << "nothing may be traced here";
    writeOld();
  }

  std::string folder() const { return folder_.path() + "/settings"; }
  std::string path() const { return folder() + "/" + kFile; }

  Outcome write(int value, const std::vector<std::string>& under = {}) {
    auto command = under;
    command.insert(command.end(), {SETTINGS_WRITER, folder(), kDomain, std::to_string(value)});
    // A sanitizer's look for leaks is a tracer itself.
    return run(command, environmentWith({{"ASAN_OPTIONS", "detect_leaks=0"}}));
  }

  void writeOld() {
    const auto outcome = write(kOld);
    ASSERT_EQ(outcome.status, 0) << outcome.standardError;
    ASSERT_EQ(stored(), kOld);
  }

  /// The number in the file; 0 for a file that is not whole.
  int stored() const {
    const auto bytes = readFile(path());
    if (!bytes) return 0;
    const auto list = XmlPropertyLists().parse(*bytes);
    const auto* const value = list ? list->find("number") : nullptr;
    const auto* const number = value ? value->as<std::int64_t>() : nullptr;
    return number ? static_cast<int>(*number) : 0;
  }

  std::vector<std::string> names() const {
    std::vector<std::string> result;
    for (const auto& entry : fs::directory_iterator(folder())) {
      result.push_back(entry.path().filename());
    }
    std::sort(result.begin(), result.end());
    return result;
  }

  /// The system calls between the writer's two lines, seen once without a fault. Which they are
  /// depends on whether there have been settings before.
  std::vector<SystemCall> callsOfTheWrite() {
    const auto log = folder_.path() + "/strace";
    // Memory is not the disk's, and a sanitizer asks for some at any time.
    EXPECT_EQ(write(kOld, {"strace", "-o", log, "-e", "trace=!%memory"}).status, 0);
    const auto text = readFile(log);
    EXPECT_TRUE(text);
    std::istringstream lines(text ? *text : "");
    std::map<std::string, int> counts;
    std::vector<SystemCall> result;
    bool within = false;
    for (std::string line; std::getline(lines, line);) {
      const auto name = callName(line);
      if (name.empty()) continue;
      ++counts[name];
      if (line.find("\"end\\n\"") != line.npos) break;
      if (within) result.push_back({name, counts[name]});
      within = within || line.find("\"begin\\n\"") != line.npos;
    }
    return result;
  }

  /// The command that has `call` meet `fault`.
  static std::vector<std::string> with(const SystemCall& call, const std::string& fault) {
    return {"strace", "-o", "/dev/null", "-e",
            "inject=" + call.name + ":" + fault + ":when=" + std::to_string(call.number)};
  }

  TemporaryFolder folder_;
};

TEST_F(SettingsFaults, WriteIsSeenWhole) {
  std::vector<std::string> seen;
  for (const auto& call : callsOfTheWrite()) seen.push_back(call.name);
  for (const char* name : {"unlink", "write", "rename"}) {
    EXPECT_EQ(std::count(seen.begin(), seen.end(), name), 1) << name;
  }
  EXPECT_EQ(std::count(seen.begin(), seen.end(), "fsync"), 2) << "the file, and its folder";
}

TEST_F(SettingsFaults, FullDiskAtAnyCallKeepsTheOldSettingsOrHasTheNewOnes) {
  for (const auto& call : callsOfTheWrite()) {
    SCOPED_TRACE(call.name + " number " + std::to_string(call.number));
    writeOld();
    const auto outcome = write(kNew, with(call, "error=ENOSPC"));
    EXPECT_EQ(outcome.status, 0) << outcome.standardError;
    const auto lines = std::count(outcome.standardError.begin(), outcome.standardError.end(), '\n');
    EXPECT_LE(lines, 1) << outcome.standardError;
    if (stored() != kNew) {
      EXPECT_EQ(stored(), kOld);
      EXPECT_THAT(outcome.standardError, HasSubstr("Failed to write settings: "));
      EXPECT_THAT(outcome.standardError, HasSubstr(": No space left on device\n"));
    }
    EXPECT_THAT(names(), ElementsAre(kFile));
  }
}

TEST_F(SettingsFaults, KillAtAnyCallLeavesOldOrNewSettingsAndNothingThatGrows) {
  for (const auto& call : callsOfTheWrite()) {
    SCOPED_TRACE(call.name + " number " + std::to_string(call.number));
    writeOld();
    for (int tries = 0; tries < 2; ++tries) {
      EXPECT_EQ(write(kNew, with(call, "signal=KILL")).status, 128 + SIGKILL);
      EXPECT_THAT(stored(), AnyOf(kOld, kNew));
      EXPECT_THAT(names(),
                  AnyOf(ElementsAre(kFile), ElementsAre(kFile, std::string(kFile) + ".new")));
    }
    const auto outcome = write(kNew);
    EXPECT_THAT(outcome.standardError, IsEmpty());
    EXPECT_EQ(stored(), kNew);
    EXPECT_THAT(names(), SizeIs(1)) << "the next write sweeps up";
  }
}

TEST_F(SettingsFaults, FaultAtAnyCallOfTheVeryFirstWriteLeavesNoneOrAllOfTheSettings) {
  fs::remove_all(folder());
  const auto calls = callsOfTheWrite();
  EXPECT_TRUE(std::any_of(calls.begin(), calls.end(),
                          [](const SystemCall& call) { return call.name == "mkdir"; }));
  for (const auto& call : calls) {
    for (const char* fault : {"signal=KILL", "error=ENOSPC"}) {
      SCOPED_TRACE(call.name + " number " + std::to_string(call.number) + " " + fault);
      fs::remove_all(folder());
      const auto outcome = write(kNew, with(call, fault));
      EXPECT_EQ(outcome.status, fault[0] == 's' ? 128 + SIGKILL : 0);
      EXPECT_TRUE(!fs::exists(path()) || stored() == kNew);
      EXPECT_THAT(write(kNew).standardError, IsEmpty());
      EXPECT_EQ(stored(), kNew);
      EXPECT_THAT(names(), SizeIs(1));
    }
  }
}

TEST_F(SettingsFaults, InterruptedCallsAreMadeAgain) {
  for (const auto& call : callsOfTheWrite()) {
    if (call.name != "write") continue;
    writeOld();
    const auto outcome = write(kNew, with(call, "error=EINTR"));
    EXPECT_THAT(outcome.standardError, IsEmpty());
    EXPECT_EQ(stored(), kNew);
  }
}

TEST_F(SettingsFaults, DiskThatFailsForAWhileCostsNothingOnceItWorksAgain) {
  const auto refused = write(kNew, {"strace", "-o", "/dev/null", "-e", "inject=fsync:error=EIO"});
  EXPECT_THAT(refused.standardError, HasSubstr("Input/output error"));
  EXPECT_EQ(stored(), kOld);
  EXPECT_THAT(write(kNew).standardError, IsEmpty());
  EXPECT_EQ(stored(), kNew);
}

}  // namespace
}  // namespace quillmont::testing
