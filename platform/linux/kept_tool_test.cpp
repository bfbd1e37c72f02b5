#include "platform/linux/kept_tool.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "tests/support/Program.h"

namespace quillmont {
namespace {

namespace fs = std::filesystem;

struct KeptTool : ::testing::Test {
  testing::TemporaryFolder temporary;
  const std::string tool = temporary.path() + "/libexec/speak";
  const std::string folder = temporary.path() + "/runtime/bin";
  const std::string link = folder + "/speak";

  void SetUp() override {
    fs::create_directories(temporary.path() + "/libexec");
    fs::copy_file("/bin/echo", tool);
  }
};

TEST_F(KeptTool, IsStartedAfterItsFolderWasDeleted) {
  keepTool(tool, folder);
  fs::remove_all(temporary.path() + "/libexec");
  const auto outcome = testing::run({"/bin/bash", "-c", "PATH=" + folder + "; speak still here"});
  EXPECT_EQ(outcome.status, 0) << outcome.standardError;
  EXPECT_EQ(outcome.standardOutput, "still here\n");
}

TEST_F(KeptTool, LiesInAFolderOfTheUserAlone) {
  keepTool(tool, folder);
  struct stat status = {};
  ASSERT_EQ(stat(folder.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777u, 0700u);
  EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 1);
}

TEST_F(KeptTool, ReplacesTheLinkOfAnEarlierProcess) {
  fs::create_directories(folder);
  fs::create_symlink("/proc/1/fd/3", link);
  fs::create_symlink("/proc/1/fd/3", link + ".new");
  keepTool(tool, folder);
  const auto own = "/proc/" + std::to_string(getpid()) + "/fd/";
  EXPECT_TRUE(fs::read_symlink(link).string().starts_with(own));
  EXPECT_TRUE(fs::equivalent(link, tool));
}

TEST_F(KeptTool, AnEarlierProcesssLinkIsNotLeftWhenThereIsNoTool) {
  fs::create_directories(folder);
  fs::create_symlink("/proc/1/fd/3", link);
  fs::remove(tool);
  keepTool(tool, folder);
  EXPECT_TRUE(fs::is_empty(folder));
}

TEST_F(KeptTool, DoesWithoutAFolderThatCannotBeMade) {
  fs::create_directories(temporary.path() + "/runtime");
  fs::copy_file("/bin/echo", folder);
  keepTool(tool, folder);
  EXPECT_TRUE(fs::is_regular_file(folder));
}

}  // namespace
}  // namespace quillmont
