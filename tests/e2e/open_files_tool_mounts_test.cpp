// Names as the open-files tool spells them, and mounts of every kind around the volume.

#include <sys/mman.h>

#include <algorithm>
#include <chrono>

#include "platform/linux/user_folders.h"
#include "platform/posix/Descriptor.h"
#include "tests/e2e/OpenFilesTool.h"
#include "tests/support/Holder.h"

namespace quillmont {
namespace {

using std::filesystem::create_directories;
using testing::Holder;

/// The link in /proc to the descriptor under which the process `pid` holds `path`.
std::string linkTo(const std::string& path, pid_t pid) {
  const auto descriptors = "/proc/" + std::to_string(pid) + "/fd";
  for (const auto& entry : std::filesystem::directory_iterator(descriptors)) {
    std::error_code ignored;
    if (std::filesystem::read_symlink(entry, ignored) == path) return entry.path();
  }
  return {};
}

TEST_F(OpenFilesTool, TwoProcessesOfOneName) {
  const auto take = [&] { return called("twin") && opened(file_, O_RDONLY); };
  const Holder first(take);
  const Holder second(take);
  expectUsers({first.pid(), second.pid()});
  EXPECT_EQ(fields(ask(volume_).standardOutput, 'c'), (std::vector<std::string>{"twin", "twin"}));
}

TEST_F(OpenFilesTool, OddCommandNamesAreSpelledAsLsofDoes) {
  for (const char* name : {"a b", " lead", "trail ", "x\ny", "a\\b", "\x01\t\x1b", "映像",
                           "é\u2028", "\xff\xfe", "ab映映映映\xe6", "0123456789abcde"}) {
    const Holder holder([&] { return called(name) && opened(file_, O_RDONLY); });
    expectUsers({holder.pid()});
    const auto lsof = askLsof(volume_);
    if (!lsof) GTEST_SKIP() << "no lsof to compare with";
    EXPECT_EQ(fields(ask(volume_).standardOutput, 'c'), fields(lsof->standardOutput, 'c'));
  }
}

TEST_F(OpenFilesTool, ParenthesesInACommandNameAreKeptThoughLsofStumblesOverThem) {
  for (const std::string name : {"a)b (c)", "(x", ")", "(sd-pam)"}) {
    const Holder holder([&] { return called(name.c_str()) && opened(file_, O_RDONLY); });
    expectUsersHere({holder.pid()});
    EXPECT_EQ(fields(ask(volume_).standardOutput, 'c'), std::vector<std::string>{name});
  }
}

TEST_F(OpenFilesTool, OddFileNamesAreSpelledAsLsofDoes) {
  std::vector<std::string> names = {"映像 é", "\xe6\x98z", "\u0085\u2028", "two\nlines\\n"};
  for (char byte = 1; byte < 127; ++byte) {
    if (byte != '/') names.push_back(std::string("x") + byte);
  }
  const Holder holder([&] {
    return std::all_of(names.begin(), names.end(), [&](const std::string& name) {
      return opened(volume_ + "/" + name, O_RDWR | O_CREAT);
    });
  });
  expectUsers({holder.pid()});
  const auto lsof = askLsof(volume_);
  if (!lsof) GTEST_SKIP() << "no lsof to compare with";
  EXPECT_EQ(fields(ask(volume_).standardOutput, 'n'), fields(lsof->standardOutput, 'n'));
}

TEST_F(OpenFilesTool, BindMountOfTheVolumeElsewhere) {
  const auto elsewhere = folder_.path() + "/elsewhere";
  create_directories(elsewhere);
  ASSERT_EQ(mount(volume_.c_str(), elsewhere.c_str(), nullptr, MS_BIND, nullptr), 0);
  mounted_.push_back(elsewhere);
  const Holder holder([&] { return opened(elsewhere + "/file", O_RDONLY); });
  expectUsers({holder.pid()});
}

TEST_F(OpenFilesTool, FileOnAMountBelowTheVolumeDoesNotCount) {
  const auto below = volume_ + "/below";
  ASSERT_NO_FATAL_FAILURE(mountMemory(below));
  const Holder holder([&] { return opened(below + "/file", O_RDWR | O_CREAT); });
  expectUsers({});
}

TEST_F(OpenFilesTool, FileOfASimilarPathOnAnotherDeviceDoesNotCount) {
  const auto similar = volume_ + " 2";
  create_directories(similar);
  const Holder holder([&] { return opened(similar + "/file", O_RDWR | O_CREAT); });
  expectUsers({});
}

TEST_F(OpenFilesTool, ProcessInAnotherMountTable) {
  const Holder holder([&] { return testing::enterOwnMountTable() && opened(file_, O_RDONLY); });
  expectUsers({holder.pid()});
}

TEST_F(OpenFilesTool, VolumeThatWasMountedOverKeepsItsUsersApart) {
  const Holder below([&] { return opened(file_, O_RDONLY); });
  ASSERT_NO_FATAL_FAILURE(mountMemory(volume_));
  const Holder above([&] { return opened(file_, O_RDWR | O_CREAT); });
  expectUsers({above.pid()});
}

TEST_F(OpenFilesTool, BtrfsSubvolume) {
  const auto image = folder_.path() + "/image";
  std::ofstream(image).close();
  std::filesystem::resize_file(image, 128u << 20);
  const auto volume = folder_.path() + "/btrfs";
  create_directories(volume);
  if (testing::run({"mkfs.btrfs", "-q", image}).status != 0 ||
      testing::run({"mount", "-o", "loop", image, volume}).status != 0) {
    GTEST_SKIP() << "no btrfs or no loop device on this machine";
  }
  mounted_.push_back(volume);
  ASSERT_EQ(testing::run({"btrfs", "subvolume", "create", volume + "/sub"}).status, 0);
  const Holder inSubvolume([&] { return opened(volume + "/sub/file", O_RDWR | O_CREAT); });
  const Holder mapping([&] {
    const Descriptor file(open((volume + "/mapped").c_str(), O_RDWR | O_CREAT, 0600));
    return ftruncate(file.get(), 4096) == 0 &&
           mmap(nullptr, 4096, PROT_READ, MAP_SHARED, file.get(), 0) != MAP_FAILED;
  });
  EXPECT_EQ(pidsIn(ask(volume).standardOutput), (Pids{inSubvolume.pid(), mapping.pid()}));
}

TEST_F(OpenFilesTool, HungFileSystemElsewhereDoesNotMatter) {
  Descriptor server(open("/dev/fuse", O_RDWR | O_CLOEXEC));
  const auto hung = folder_.path() + "/hung";
  create_directories(hung);
  const auto options =
      "fd=" + std::to_string(server.get()) + ",rootmode=40000,user_id=0,group_id=0";
  if (!server || mount("hung", hung.c_str(), "fuse", 0, options.c_str()) != 0) {
    GTEST_SKIP() << "no FUSE on this machine";
  }
  mounted_.push_back(hung);
  const Holder stuck([&] { return opened(hung, O_PATH); });
  const auto link = linkTo(hung, stuck.pid());
  ASSERT_EQ(testing::run({"stat", "-L", link}, {}, std::chrono::seconds(1)).status, 128 + SIGKILL)
      << "looking at a file there does not hang";
  const Holder holder([&] { return opened(file_, O_RDONLY); });
  const auto start = std::chrono::steady_clock::now();
  const auto outcome = testing::run({kTool, "-F", "cpn", volume_}, {}, std::chrono::seconds(5));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
  EXPECT_EQ(pidsIn(outcome.standardOutput), Pids{holder.pid()});
}

TEST_F(OpenFilesTool, VolumeIsAskedForByTheNameUnderWhichItIsPresented) {
  if (!std::filesystem::exists("/media")) GTEST_SKIP() << "no /media on this machine";
  ASSERT_NO_FATAL_FAILURE(mountMemory("/media"));
  const auto mountPoint = "/media/" + userName() + "/映像 \"2\"";
  ASSERT_NO_FATAL_FAILURE(mountMemory(mountPoint));
  const Holder holder([&] { return opened(mountPoint + "/file", O_RDWR | O_CREAT); });
  for (const auto* path : {"/Volumes/映像 \"2\"", "/Volumes/映像 \"2\"/"}) {
    EXPECT_EQ(pidsIn(ask(path).standardOutput), Pids{holder.pid()}) << path;
  }
}

TEST_F(OpenFilesTool, SlashAtTheEndDoesNotMatter) {
  const Holder holder([&] { return opened(file_, O_RDONLY); });
  EXPECT_EQ(pidsIn(ask(volume_ + "/").standardOutput), Pids{holder.pid()});
}

TEST_F(OpenFilesTool, PathThatIsNoVolumeIsAnError) {
  for (const auto& path :
       {folder_.path(), file_, volume_ + "/missing", std::string("/Volumes/x")}) {
    const auto outcome = ask(path);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.standardOutput, "");
    EXPECT_NE(outcome.standardError, "");
  }
}

TEST(OpenFilesToolUsage, OtherArgumentsAreRefused) {
  const std::vector<std::vector<std::string>> commands = {{kTool},
                                                          {kTool, "/"},
                                                          {kTool, "-F", "pcn", "/"},
                                                          {kTool, "-F", "cpn"},
                                                          {kTool, "-w", "-F", "cpn", "/"}};
  for (const auto& command : commands) {
    const auto outcome = testing::run(command);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.standardOutput, "");
    EXPECT_EQ(outcome.standardError.substr(0, 6), "usage:");
  }
}

}  // namespace
}  // namespace quillmont
