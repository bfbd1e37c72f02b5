#include "platform/posix/files.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "platform/posix/Descriptor.h"
#include "platform/posix/errors.h"
#include "tests/support/Program.h"

namespace quillmont {
namespace {

using ::testing::HasSubstr;
using testing::TemporaryFolder;

class FilesTest : public ::testing::Test {
 protected:
  std::string path(const std::string& name) const { return folder_.path() + "/" + name; }

  static unsigned modeOf(const std::string& path) {
    struct stat status = {};
    EXPECT_EQ(lstat(path.c_str(), &status), 0);
    return status.st_mode & 07777;
  }

  static std::size_t entryCount(const std::string& folder) {
    const std::filesystem::directory_iterator entries(folder);
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
  }

 private:
  TemporaryFolder folder_;
};

/// Lets no file of this process grow beyond `bytes` while it lives: a full disk for anybody.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : handler_(signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit now = {bytes, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &now);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &before_);
    signal(SIGXFSZ, handler_);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  void (*handler_)(int);
  rlimit before_ = {};
};

TEST(Errors, ErrorNumbersBecomeTheSystemsWords) {
  EXPECT_EQ(errorText(ENOENT), "No such file or directory");
  EXPECT_EQ(systemError("cannot open /x", EACCES).text, "cannot open /x: Permission denied");
}

TEST_F(FilesTest, ReadsBackEveryByteThatWasWritten) {
  std::string bytes("\0\xff\n\r", 4);
  bytes.append(100'000, 'x');
  ASSERT_TRUE(replaceFile(path("a"), bytes));
  const auto read = readFile(path("a"));
  ASSERT_TRUE(read);
  EXPECT_EQ(*read, bytes);
}

TEST_F(FilesTest, ReadsKernelFilesThatHaveNoSize) {
  if (access("/proc", F_OK) != 0) GTEST_SKIP() << "there is no /proc here";
  const auto read = readFile("/proc/self/mountinfo");
  ASSERT_TRUE(read);
  EXPECT_THAT(*read, HasSubstr(" / "));
}

TEST_F(FilesTest, FileOfExactlyTheLimitIsReadAndOneByteMoreIsRefused) {
  ASSERT_TRUE(replaceFile(path("a"), std::string(20'000, 'x')));
  EXPECT_TRUE(readFile(path("a"), 20'000));
  const auto refused = readFile(path("a"), 19'999);
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.errorText(), "cannot read " + path("a") + ": File too large");
}

TEST_F(FilesTest, EndlessFileIsRefusedAtTheLimit) {
  EXPECT_FALSE(readFile("/dev/zero", 1 << 20));
}

TEST_F(FilesTest, MissingFileAndFolderAreErrorsWithTheReason) {
  EXPECT_EQ(readFile(path("a")).errorText(),
            "cannot open " + path("a") + ": No such file or directory");
  EXPECT_THAT(readFile(path("")).errorText(), HasSubstr("Is a directory"));
}

TEST_F(FilesTest, PipeInPlaceOfAFileDoesNotBlockTheReader) {
  ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
  const auto read = readFile(path("pipe"));
  ASSERT_TRUE(read);
  EXPECT_EQ(*read, "");
}

TEST_F(FilesTest, WritingReportsAFullDevice) {
  const Descriptor full(open("/dev/full", O_WRONLY | O_CLOEXEC));
  if (!full) GTEST_SKIP() << "this machine has no /dev/full";
  EXPECT_EQ(writeAll(full.get(), "x").errorText(), "No space left on device");
  EXPECT_TRUE(writeAll(full.get(), ""));
}

TEST_F(FilesTest, CreatesMissingFoldersWithTheModeAndAcceptsExistingOnes) {
  const auto deep = path("a/b/c");
  ASSERT_TRUE(createFolders(deep, 0700));
  EXPECT_EQ(modeOf(path("a")), 0700u);
  EXPECT_EQ(modeOf(deep), 0700u);
  EXPECT_TRUE(createFolders(deep + "//", 0755));
  EXPECT_EQ(modeOf(deep), 0700u);
  EXPECT_TRUE(createFolders("/", 0755));
}

TEST_F(FilesTest, FolderBehindALinkCountsAsExisting) {
  ASSERT_TRUE(createFolders(path("real"), 0755));
  ASSERT_EQ(symlink("real", path("link").c_str()), 0);
  EXPECT_TRUE(createFolders(path("link/below"), 0755));
  EXPECT_TRUE(std::filesystem::is_directory(path("real/below")));
}

TEST_F(FilesTest, FileInTheWayOfAFolderIsNamedInTheError) {
  ASSERT_TRUE(replaceFile(path("a"), ""));
  EXPECT_THAT(createFolders(path("a/b"), 0755).errorText(),
              HasSubstr("cannot create " + path("a")));
  EXPECT_FALSE(createFolders(path("a"), 0755));
  EXPECT_FALSE(createFolders("", 0755));
}

TEST_F(FilesTest, ReplacementIsPrivateAndLeavesNoTemporaryFile) {
  ASSERT_TRUE(replaceFile(path("a"), "old"));
  ASSERT_EQ(chmod(path("a").c_str(), 0644), 0);
  ASSERT_TRUE(replaceFile(path("a"), "new"));
  EXPECT_EQ(*readFile(path("a")), "new");
  EXPECT_EQ(modeOf(path("a")), 0600u);
  EXPECT_EQ(entryCount(path("")), 1u);
}

TEST_F(FilesTest, LeftoverTemporaryFileIsReplacedAndNotFollowed) {
  ASSERT_TRUE(replaceFile(path("foreign"), "untouched"));
  ASSERT_EQ(symlink("foreign", path("a.new").c_str()), 0);
  ASSERT_TRUE(replaceFile(path("a"), "new"));
  EXPECT_EQ(*readFile(path("foreign")), "untouched");
  EXPECT_EQ(*readFile(path("a")), "new");
  EXPECT_FALSE(std::filesystem::is_symlink(path("a")));
}

TEST_F(FilesTest, LinkInPlaceOfTheFileIsReplacedAndNotFollowed) {
  ASSERT_TRUE(replaceFile(path("foreign"), "untouched"));
  ASSERT_EQ(symlink("foreign", path("a").c_str()), 0);
  ASSERT_TRUE(replaceFile(path("a"), "new"));
  EXPECT_EQ(*readFile(path("foreign")), "untouched");
  EXPECT_FALSE(std::filesystem::is_symlink(path("a")));
}

TEST_F(FilesTest, WriteThatFailsHalfWayKeepsTheOldFileAlone) {
  ASSERT_TRUE(replaceFile(path("a"), "old"));
  {
    const FileSizeLimit limit(8192);
    const auto failed = replaceFile(path("a"), std::string(100'000, 'x'));
    ASSERT_FALSE(failed);
    EXPECT_EQ(failed.errorText(), "cannot write " + path("a.new") + ": File too large");
  }
  EXPECT_EQ(*readFile(path("a")), "old");
  EXPECT_EQ(entryCount(path("")), 1u);
}

TEST_F(FilesTest, FolderInPlaceOfTheFileIsAnErrorAndStays) {
  ASSERT_TRUE(createFolders(path("a/inside"), 0755));
  EXPECT_THAT(replaceFile(path("a"), "x").errorText(), HasSubstr("cannot replace " + path("a")));
  EXPECT_TRUE(std::filesystem::is_directory(path("a/inside")));
  EXPECT_EQ(entryCount(path("")), 1u);
}

TEST_F(FilesTest, ReplacementInAMissingFolderIsAnError) {
  EXPECT_THAT(replaceFile(path("missing/a"), "x").errorText(),
              HasSubstr("No such file or directory"));
}

}  // namespace
}  // namespace quillmont
