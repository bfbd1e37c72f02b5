#include "platform/linux/user_folders.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>

#include "platform/posix/files.h"
#include "tests/support/Program.h"

namespace quillmont {
namespace {

using ::testing::HasSubstr;

constexpr const char* kVariables[] = {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME",
                                      "XDG_RUNTIME_DIR"};

/// Starts with none of the variables set and puts them back in the end.
class UserFoldersTest : public ::testing::Test {
 protected:
  UserFoldersTest() {
    for (const char* name : kVariables) {
      if (const char* value = getenv(name)) before_[name] = value;
      unsetenv(name);
    }
  }
  ~UserFoldersTest() override {
    for (const char* name : kVariables) {
      unsetenv(name);
      if (before_.count(name) != 0) set(name, before_[name]);
    }
  }

  static void set(const std::string& name, const std::string& value) {
    setenv(name.c_str(), value.c_str(), 1);
  }

  std::string path(const std::string& name = "") const { return folder_.path() + name; }

  /// Where the runtime folder is to be while $XDG_RUNTIME_DIR is the test's own folder.
  std::string runtime() const { return path("/com.norwaldex.Quillmont"); }

 private:
  testing::TemporaryFolder folder_;
  std::map<std::string, std::string> before_;
};

TEST_F(UserFoldersTest, FoldersFollowTheirVariables) {
  set("HOME", "/h");
  EXPECT_EQ(homeFolder(), "/h");
  EXPECT_EQ(configFolder(), "/h/.config");
  EXPECT_EQ(dataFolder(), "/h/.local/share");
  set("XDG_CONFIG_HOME", "/c");
  set("XDG_DATA_HOME", "/d");
  EXPECT_EQ(configFolder(), "/c");
  EXPECT_EQ(dataFolder(), "/d");
}

TEST_F(UserFoldersTest, EmptyAndRelativeVariablesDoNotCount) {
  set("HOME", "/h");
  for (const char* value : {"", "relative", "./x"}) {
    set("XDG_CONFIG_HOME", value);
    set("XDG_DATA_HOME", value);
    EXPECT_EQ(configFolder(), "/h/.config");
    EXPECT_EQ(dataFolder(), "/h/.local/share");
  }
}

TEST_F(UserFoldersTest, HomeAndNameComeFromTheUserDatabase) {
  const passwd* user = getpwuid(getuid());
  if (!user) GTEST_SKIP() << "this user is not in the user database";
  EXPECT_EQ(homeFolder(), user->pw_dir);
  EXPECT_EQ(userName(), user->pw_name);
  set("HOME", "relative");
  EXPECT_EQ(homeFolder(), user->pw_dir);
}

TEST_F(UserFoldersTest, RuntimeFolderIsMadePrivateAndFoundAgain) {
  set("XDG_RUNTIME_DIR", path());
  const auto made = runtimeFolder();
  ASSERT_TRUE(made) << made.errorText();
  EXPECT_EQ(*made, runtime());
  struct stat status = {};
  ASSERT_EQ(lstat(made->c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0700u);
  const auto again = runtimeFolder();
  ASSERT_TRUE(again);
  EXPECT_EQ(*again, *made);
}

TEST_F(UserFoldersTest, RuntimeFolderOpenToOthersIsRefused) {
  set("XDG_RUNTIME_DIR", path());
  ASSERT_EQ(mkdir(runtime().c_str(), 0700), 0);
  ASSERT_EQ(chmod(runtime().c_str(), 0710), 0);
  EXPECT_THAT(runtimeFolder().errorText(), HasSubstr("open to others"));
}

TEST_F(UserFoldersTest, LinkOrFileInPlaceOfTheRuntimeFolderIsRefused) {
  set("XDG_RUNTIME_DIR", path());
  ASSERT_EQ(mkdir(path("/real").c_str(), 0700), 0);
  ASSERT_EQ(symlink("real", runtime().c_str()), 0);
  EXPECT_THAT(runtimeFolder().errorText(), HasSubstr("Not a directory"));
  ASSERT_EQ(unlink(runtime().c_str()), 0);
  ASSERT_TRUE(replaceFile(runtime(), ""));
  EXPECT_THAT(runtimeFolder().errorText(), HasSubstr("Not a directory"));
}

TEST_F(UserFoldersTest, RuntimeFolderOfSomebodyElseIsRefused) {
  if (getuid() != 0) GTEST_SKIP() << "only root can give a folder away";
  set("XDG_RUNTIME_DIR", path());
  ASSERT_EQ(mkdir(runtime().c_str(), 0700), 0);
  ASSERT_EQ(chown(runtime().c_str(), 65534, 65534), 0);
  EXPECT_THAT(runtimeFolder().errorText(), HasSubstr("belongs to somebody else"));
}

TEST_F(UserFoldersTest, MissingOrForeignRuntimeBaseIsPassedOver) {
  if (std::filesystem::exists("/run/user/" + std::to_string(getuid()))) {
    GTEST_SKIP() << "this user has a session's runtime folder, which comes before the home folder";
  }
  set("HOME", path("/home"));
  set("XDG_RUNTIME_DIR", path("/missing"));
  const auto inCache = path("/home/.cache/com.norwaldex.Quillmont");
  EXPECT_EQ(*runtimeFolder(), inCache);
  if (getuid() != 0) return;
  ASSERT_EQ(mkdir(path("/missing").c_str(), 0700), 0);
  ASSERT_EQ(chown(path("/missing").c_str(), 65534, 65534), 0);
  EXPECT_EQ(*runtimeFolder(), inCache);
}

}  // namespace
}  // namespace quillmont
