#include "platform/linux/tools/hdiutil/mount_folders.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "platform/linux/user_folders.h"
#include "tests/support/Program.h"

namespace quillmont {
namespace {

namespace fs = std::filesystem;

std::string nameFor(const std::string& label, const std::string& uuid) {
  ImageVolume volume;
  volume.label = label;
  volume.uuid = uuid;
  return volumeFolderName(volume);
}

TEST(VolumeFolders, AreNamedByTheLabel) {
  EXPECT_EQ(nameFor("Backup 2", "1234"), "Backup 2");
  EXPECT_EQ(nameFor("-rf \n\"x\"", "1234"), "-rf \n\"x\"");
  EXPECT_EQ(nameFor("...", "1234"), "...");
}

TEST(VolumeFolders, NeverLeaveTheirParent) {
  EXPECT_EQ(nameFor("../../etc", "1234"), ".._.._etc");
  EXPECT_EQ(nameFor("/", "1234"), "_");
  EXPECT_EQ(nameFor("..", "1234"), "1234");
  EXPECT_EQ(nameFor(".", ".."), "disk");
}

TEST(VolumeFolders, AreNamedByTheIdentifierWithoutALabelAndDiskWithoutBoth) {
  EXPECT_EQ(nameFor("", "12-34"), "12-34");
  EXPECT_EQ(nameFor("", ""), "disk");
}

class VolumeFolder : public ::testing::Test {
 protected:
  std::string make(const std::vector<std::string>& taken = {}) {
    const auto made = makeVolumeFolder(parent_.path(), "x", taken);
    EXPECT_TRUE(made) << made.errorText();
    return made ? made->substr(parent_.path().size()) : "";
  }
  std::string at(const std::string& name) const { return parent_.path() + "/" + name; }

  testing::TemporaryFolder parent_;
};

TEST_F(VolumeFolder, IsMade) {
  EXPECT_EQ(make(), "/x");
  EXPECT_TRUE(fs::is_directory(at("x")));
}

TEST_F(VolumeFolder, AnEmptyOneIsUsedAgain) {
  fs::create_directory(at("x"));
  EXPECT_EQ(make(), "/x");
}

TEST_F(VolumeFolder, PassesOverPlacesThatAreTaken) {
  EXPECT_EQ(make({at("x"), at("x1")}), "/x2");
  EXPECT_FALSE(fs::exists(at("x")));
}

TEST_F(VolumeFolder, PassesOverFilesLinksAndFullFolders) {
  std::ofstream(at("x")).close();
  fs::create_directory(at("empty"));
  fs::create_directory_symlink(at("empty"), at("x1"));
  fs::create_directories(at("x2/full"));
  EXPECT_EQ(make(), "/x3");
}

TEST_F(VolumeFolder, CannotBeMadeWithoutItsParent) {
  EXPECT_FALSE(makeVolumeFolder(at("none"), "x", {}));
}

TEST_F(VolumeFolder, ALongNameIsCutAtTheEndOfACharacter) {
  std::string name;
  while (name.size() < 300) name += "翼";  // 3 bytes; 85 of them fill a name
  const auto first = makeVolumeFolder(parent_.path(), name, {});
  ASSERT_TRUE(first) << first.errorText();
  EXPECT_EQ(*first, at(name.substr(0, 255)));
  const auto second = makeVolumeFolder(parent_.path(), name, {*first});
  ASSERT_TRUE(second) << second.errorText();
  EXPECT_EQ(*second, at(name.substr(0, 252) + "1"));
  EXPECT_TRUE(fs::is_directory(*second));
}

TEST_F(VolumeFolder, ALongNameThatFillsItsFolderNameLeavesRoomForANumber) {
  const auto made =
      makeVolumeFolder(parent_.path(), std::string(255, 'x'), {at(std::string(255, 'x'))});
  ASSERT_TRUE(made) << made.errorText();
  EXPECT_EQ(*made, at(std::string(254, 'x') + "1"));
}

TEST_F(VolumeFolder, OutsideTheMediaFoldersIsNeverRemoved) {
  fs::create_directory(at("x"));
  removeVolumeFolder(at("x"));
  EXPECT_TRUE(fs::exists(at("x")));
}

/// A media folder that may or may not be safe.
class MediaFolder : public ::testing::Test {
 protected:
  void SetUp() override {
    if (geteuid() != 0) GTEST_SKIP() << "folders of the superuser take the superuser";
  }

  std::string media() const { return parent_.path() + "/media"; }

  void expectRefused() {
    const auto folder = userMediaFolder(media());
    ASSERT_FALSE(folder);
    EXPECT_EQ(folder.errorText(), media() +
                                      " is no safe place for volumes: others could replace "
                                      "what is in it");
  }

  testing::TemporaryFolder parent_;
};

TEST_F(MediaFolder, IsMadeWithTheUsersFolderInIt) {
  const auto folder = userMediaFolder(media());
  ASSERT_TRUE(folder) << folder.errorText();
  EXPECT_EQ(*folder, media() + "/" + userName());
  EXPECT_EQ(fs::status(media()).permissions(), fs::perms(0755));
  EXPECT_EQ(fs::status(*folder).permissions(), fs::perms(0700));
}

TEST_F(MediaFolder, ThatOthersCanChangeIsRefused) {
  fs::create_directory(media());
  for (const auto mode : {0775, 0757}) {
    fs::permissions(media(), fs::perms(mode));
    expectRefused();
  }
}

TEST_F(MediaFolder, OfAnotherUserIsRefused) {
  fs::create_directory(media());
  ASSERT_EQ(chown(media().c_str(), 1, 0), 0);
  expectRefused();
}

TEST_F(MediaFolder, ThatIsALinkIsRefused) {
  fs::create_directory(parent_.path() + "/elsewhere");
  fs::create_directory_symlink(parent_.path() + "/elsewhere", media());
  expectRefused();
}

}  // namespace
}  // namespace quillmont
