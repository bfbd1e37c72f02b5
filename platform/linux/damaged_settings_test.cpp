// Settings that cannot be read are set aside, whatever lies in their place, and never lost.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "platform/linux/PropertyListDefaultsTest.h"

namespace quillmont {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using testing::PropertyListDefaultsTest;
using ::testing::SizeIs;
using ::testing::StartsWith;

/// Gives root's permissions up while it lives, and the folder `home` to the user it becomes.
class OrdinaryUser {
 public:
  explicit OrdinaryUser(const std::string& home) {
    if (!wasRoot_) return;
    EXPECT_EQ(chown(home.c_str(), 65534, 65534), 0);
    EXPECT_EQ(seteuid(65534), 0);
  }
  ~OrdinaryUser() {
    if (!wasRoot_) return;
    EXPECT_EQ(seteuid(0), 0);
  }
  OrdinaryUser(const OrdinaryUser&) = delete;
  OrdinaryUser& operator=(const OrdinaryUser&) = delete;

 private:
  const bool wasRoot_ = geteuid() == 0;
};

TEST_F(PropertyListDefaultsTest, DamagedFileIsSetAsideWithOneLogLineBeforeAnyWrite) {
  const std::string damaged = "<plist><dict><key>a</key>";
  place(damaged);
  auto defaults = start();
  EXPECT_EQ(defaults.object("a"), std::nullopt);
  ASSERT_THAT(
      damagedNames(),
      ElementsAre(MatchesRegex("com\\.example\\.Test\\.plist\\.damaged-[0-9]{8}T[0-9]{6}Z")));
  EXPECT_EQ(*readFile(folder() + "/" + damagedNames()[0]), damaged);
  EXPECT_THAT(log_.lines(),
              ElementsAre(AllOf(StartsWith("Failed to read settings: " + file() + ": line 1"),
                                HasSubstr(damagedNames()[0]))));
  defaults.setBool("a", true);
  EXPECT_EQ(stored(), PropertyList(PropertyListDictionary{{"a", true}}));
  EXPECT_EQ(*readFile(folder() + "/" + damagedNames()[0]), damaged);
  EXPECT_THAT(log_.lines(), SizeIs(1));
}

TEST_F(PropertyListDefaultsTest, EmptyFileAndListThatIsNoDictionaryAreSetAside) {
  for (const std::string& bytes : {std::string(), *lists_.xml(PropertyListArray{"a"}),
                                   std::string("bplist00"), std::string("\0", 1)}) {
    place(bytes);
    start();
    EXPECT_EQ(stored(), PropertyList("missing"));
  }
  EXPECT_THAT(log_.lines(), SizeIs(4));
}

TEST_F(PropertyListDefaultsTest, DamagedFilesOfOneSecondAllKeepTheirContents) {
  for (int i = 0; i < 5; ++i) {
    place("damaged " + std::to_string(i));
    start();
  }
  std::vector<std::string> contents;
  for (const auto& name : damagedNames()) contents.push_back(*readFile(folder() + "/" + name));
  std::sort(contents.begin(), contents.end());
  EXPECT_THAT(contents,
              ElementsAre("damaged 0", "damaged 1", "damaged 2", "damaged 3", "damaged 4"));
}

TEST_F(PropertyListDefaultsTest, FolderInPlaceOfTheFileIsSetAside) {
  ASSERT_TRUE(createFolders(file() + "/inside", 0700));
  auto defaults = start();
  defaults.setBool("a", true);
  EXPECT_EQ(start().object("a"), PropertyList(true));
  EXPECT_THAT(damagedNames(), SizeIs(1));
}

TEST_F(PropertyListDefaultsTest, FileOfAnotherUserIsSetAside) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give a file away";
  place(*lists_.xml(PropertyListDictionary{{"a", true}}));
  ASSERT_EQ(chown(file().c_str(), 65534, 65534), 0);
  EXPECT_EQ(start().object("a"), std::nullopt);
  EXPECT_THAT(damagedNames(), SizeIs(1));
  EXPECT_THAT(log_.lines(), ElementsAre(HasSubstr("it belongs to somebody else")));
}

TEST_F(PropertyListDefaultsTest, UnreadableFileIsSetAside) {
  const OrdinaryUser user(home_.path());
  place(*lists_.xml(PropertyListDictionary{{"a", true}}));
  ASSERT_EQ(chmod(file().c_str(), 0), 0);
  EXPECT_EQ(start().object("a"), std::nullopt);
  EXPECT_THAT(log_.lines(), ElementsAre(HasSubstr("Permission denied")));
}

TEST_F(PropertyListDefaultsTest, LinkInPlaceOfTheFileIsReplacedByTheFirstWrite) {
  const auto foreign = home_.path() + "/foreign.plist";
  const auto bytes = *lists_.xml(PropertyListDictionary{{"a", "linked"}});
  ASSERT_TRUE(replaceFile(foreign, bytes));
  ASSERT_TRUE(createFolders(folder(), 0700));
  ASSERT_EQ(symlink(foreign.c_str(), file().c_str()), 0);
  auto defaults = start();
  EXPECT_EQ(defaults.object("a"), PropertyList("linked"));
  defaults.setObject("a", "own");
  EXPECT_EQ(*readFile(foreign), bytes);
  EXPECT_FALSE(std::filesystem::is_symlink(file()));
  EXPECT_EQ(start().object("a"), PropertyList("own"));
}

TEST_F(PropertyListDefaultsTest, DamagedFileThatCannotBeSetAsideIsNotWrittenOver) {
  const OrdinaryUser user(home_.path());
  place("damaged");
  ASSERT_EQ(chmod(folder().c_str(), 0500), 0);
  auto defaults = start();
  defaults.setBool("a", true);
  EXPECT_EQ(*readFile(file()), "damaged");
  EXPECT_THAT(log_.lines(), ElementsAre(HasSubstr("failed to set it aside: Permission denied"),
                                        StartsWith("Failed to write settings: ")));
  ASSERT_EQ(chmod(folder().c_str(), 0700), 0);
  defaults.setBool("a", true);
  EXPECT_EQ(stored(), PropertyList(PropertyListDictionary{{"a", true}}));
  EXPECT_THAT(damagedNames(), SizeIs(1));
}

}  // namespace
}  // namespace quillmont
