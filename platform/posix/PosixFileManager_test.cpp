#include "platform/posix/PosixFileManager.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>

#include "platform/posix/files.h"
#include "tests/support/Program.h"

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class PosixFileManagerTest : public ::testing::Test {
 protected:
  std::string path(const std::string& name) const { return folder_.path() + "/" + name; }

  PosixFileManager files_{{"/home/u/Library", "/other"}};

 private:
  testing::TemporaryFolder folder_;
};

TEST_F(PosixFileManagerTest, LibraryFoldersAreThoseItWasGivenInTheirOrder) {
  EXPECT_THAT(files_.userLibraryFolders(), ElementsAre("/home/u/Library", "/other"));
  EXPECT_TRUE(PosixFileManager({}).userLibraryFolders().empty());
}

TEST_F(PosixFileManagerTest, TellsTheModificationDateToTheFraction) {
  ASSERT_TRUE(files_.writeFile(path("a"), "x"));
  const timespec times[2] = {{1, 0}, {1'700'000'000, 250'000'000}};
  ASSERT_EQ(utimensat(AT_FDCWD, path("a").c_str(), times, 0), 0);
  const auto attributes = files_.attributes(path("a"));
  ASSERT_TRUE(attributes);
  const TimePoint expected(std::chrono::milliseconds(1'700'000'000'250));
  EXPECT_EQ(attributes->modificationDate, expected);
}

template <class Status>
constexpr bool kTellsCreation = requires(const Status& status) {
  status.st_birthtimespec;
};

TEST_F(PosixFileManagerTest, TellsACreationDateWhereTheSystemDoes) {
  const auto before = std::chrono::system_clock::now() - std::chrono::seconds(60);
  ASSERT_TRUE(files_.writeFile(path("a"), "x"));
  const auto attributes = files_.attributes(path("a"));
  ASSERT_TRUE(attributes);
  EXPECT_EQ(attributes->creationDate.has_value(), kTellsCreation<struct stat>);
  EXPECT_GT(attributes->creationDate.value_or(std::chrono::system_clock::now()), before);
}

TEST_F(PosixFileManagerTest, DatesBeforeTheEpochAreRead) {
  ASSERT_TRUE(files_.writeFile(path("a"), "x"));
  const timespec times[2] = {{-10, 0}, {-10, 0}};
  ASSERT_EQ(utimensat(AT_FDCWD, path("a").c_str(), times, 0), 0);
  EXPECT_EQ(files_.attributes(path("a"))->modificationDate, TimePoint(std::chrono::seconds(-10)));
}

TEST_F(PosixFileManagerTest, AttributesOfAMissingItemAreTheSystemsReason) {
  EXPECT_EQ(files_.attributes(path("a")).errorText(), "No such file or directory");
}

TEST_F(PosixFileManagerTest, ExistenceFollowsLinks) {
  ASSERT_EQ(symlink("target", path("link").c_str()), 0);
  EXPECT_FALSE(files_.exists(path("link")));
  ASSERT_TRUE(files_.writeFile(path("target"), ""));
  EXPECT_TRUE(files_.exists(path("link")));
  EXPECT_TRUE(files_.exists(path("")));
  EXPECT_FALSE(files_.exists(""));
}

TEST_F(PosixFileManagerTest, WhatNobodyMayLookForCountsAsThere) {
  std::filesystem::create_directory(path("locked"));
  ASSERT_EQ(chmod(path("locked").c_str(), 0), 0);
  const pid_t nobody = fork();
  if (nobody == 0) {
    constexpr uid_t kNobody = 65534;
    if (getuid() == 0 && setuid(kNobody) != 0) _exit(2);
    _exit(files_.exists(path("locked/item")) ? 0 : 1);
  }
  int status = -1;
  EXPECT_EQ(waitpid(nobody, &status, 0), nobody);
  chmod(path("locked").c_str(), 0700);
  EXPECT_EQ(status, 0);
}

TEST_F(PosixFileManagerTest, CreatesFoldersOnTheWayAndAcceptsExistingOnes) {
  EXPECT_TRUE(files_.createDirectory(path("a/b c/\u78c1\u76d8")));
  EXPECT_TRUE(files_.createDirectory(path("a/b c/\u78c1\u76d8")));
  EXPECT_TRUE(std::filesystem::is_directory(path("a/b c/\u78c1\u76d8")));
}

TEST_F(PosixFileManagerTest, WritingReplacesLongerContents) {
  ASSERT_TRUE(files_.writeFile(path("a"), "a long text"));
  ASSERT_TRUE(files_.writeFile(path("a"), std::string("\0b", 2)));
  EXPECT_EQ(*readFile(path("a")), std::string("\0b", 2));
}

TEST_F(PosixFileManagerTest, WritingToAMissingFolderOrAPipeNobodyReadsIsAnError) {
  EXPECT_EQ(files_.writeFile(path("missing/a"), "x").errorText(), "No such file or directory");
  ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
  EXPECT_FALSE(files_.writeFile(path("pipe"), "x"));
}

TEST_F(PosixFileManagerTest, WritingToAFullDeviceIsAnError) {
  if (!files_.exists("/dev/full")) GTEST_SKIP() << "this machine has no /dev/full";
  EXPECT_EQ(files_.writeFile("/dev/full", "x").errorText(), "No space left on device");
}

TEST_F(PosixFileManagerTest, RemovesFilesLinksAndEmptyFoldersOnly) {
  ASSERT_TRUE(files_.writeFile(path("file"), ""));
  ASSERT_EQ(symlink("file", path("link").c_str()), 0);
  ASSERT_TRUE(files_.createDirectory(path("full/inside")));
  EXPECT_TRUE(files_.remove(path("link")));
  EXPECT_TRUE(files_.exists(path("file")));
  EXPECT_TRUE(files_.remove(path("file")));
  EXPECT_FALSE(files_.exists(path("file")));
  EXPECT_THAT(files_.remove(path("full")).errorText(), HasSubstr("not empty"));
  EXPECT_TRUE(files_.remove(path("full/inside")));
  EXPECT_EQ(files_.remove(path("file")).errorText(), "No such file or directory");
}

}  // namespace
}  // namespace quillmont
