#include "platform/linux/tools/hdiutil/mount_folders.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

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

TEST_F(VolumeFolder, OutsideTheMediaFoldersIsNeverRemoved) {
  fs::create_directory(at("x"));
  removeVolumeFolder(at("x"));
  EXPECT_TRUE(fs::exists(at("x")));
}

}  // namespace
}  // namespace quillmont
