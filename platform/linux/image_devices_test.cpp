#include "platform/linux/image_devices.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/support/Program.h"

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A made-up sysfs.
class ImageDevices : public ::testing::Test {
 protected:
  std::string at(const std::string& name) const { return folder_.path() + "/" + name; }
  void folder(const std::string& name) { std::filesystem::create_directories(at(name)); }
  void file(const std::string& name) { std::ofstream(at(name)) << "1\n"; }
  void link(const std::string& target, const std::string& name) {
    std::filesystem::create_directory_symlink(at(target), at(name));
  }

 private:
  testing::TemporaryFolder folder_;
};

TEST_F(ImageDevices, AnAttachedLoopDeviceIsFoundThroughItsNumber) {
  folder("block/loop3/loop");
  link("block/loop3", "7:3");
  EXPECT_EQ(loopBelow(at("7:3")), "loop3");
}

TEST_F(ImageDevices, APartitionLeadsToItsDisk) {
  folder("block/loop3/loop");
  folder("block/loop3/loop3p1");
  file("block/loop3/loop3p1/partition");
  link("block/loop3/loop3p1", "259:0");
  EXPECT_EQ(loopBelow(at("259:0")), "loop3");
}

TEST_F(ImageDevices, AMappingLeadsToWhatItIsMadeOf) {
  folder("block/loop3/loop");
  folder("block/loop3/loop3p1");
  file("block/loop3/loop3p1/partition");
  folder("block/dm-0/slaves");
  link("block/loop3/loop3p1", "block/dm-0/slaves/loop3p1");
  folder("block/dm-1/slaves");
  link("block/dm-0", "block/dm-1/slaves/dm-0");
  EXPECT_EQ(loopBelow(at("block/dm-1")), "loop3");
}

TEST_F(ImageDevices, OtherDisksAndFreeLoopDevicesLeadNowhere) {
  folder("block/sda/slaves");
  folder("block/loop4/slaves");
  EXPECT_EQ(loopBelow(at("block/sda")), std::nullopt);
  EXPECT_EQ(loopBelow(at("block/loop4")), std::nullopt);
  EXPECT_EQ(loopBelow(at("block/none")), std::nullopt);
}

TEST_F(ImageDevices, AMappingThatLeadsToItselfEnds) {
  folder("block/dm-0/slaves");
  link("block/dm-0", "block/dm-0/slaves/dm-0");
  EXPECT_EQ(loopBelow(at("block/dm-0")), std::nullopt);
}

TEST_F(ImageDevices, PartitionsComeInTheOrderOfTheirNumbers) {
  for (const char* name : {"loop1p10", "loop1p2", "loop1p", "loop1px", "loop12p1", "power"}) {
    folder("block/loop1/" + std::string(name));
  }
  EXPECT_THAT(partitionNames("loop1", at("block")), ElementsAre("loop1p2", "loop1p10"));
  EXPECT_THAT(partitionNames("loop2", at("block")), IsEmpty());
}

TEST_F(ImageDevices, OnlyNodesBelowDevAreLookedAt) {
  const Mount network{1, 0, 0, 1, "/", "/mnt", "nfs4", "host:/dev/loop0"};
  const Mount memory{2, 0, 0, 2, "/", "/tmp", "tmpfs", ""};
  const Mount terminal{3, 0, 0, 3, "/", "/x", "odd", "/dev/null"};
  EXPECT_THAT(imageMounts({network, memory, terminal}), IsEmpty());
}

TEST_F(ImageDevices, PartitionZeroIsTheWholeDevice) {
  EXPECT_EQ(deviceName("loop3", 0), "loop3");
  EXPECT_EQ(deviceName("loop3", 12), "loop3p12");
}

TEST_F(ImageDevices, AProgramsFileSystemIsNoVolumeWhateverSourceItNames) {
  const auto loopOf = [](const std::string& source) { return std::optional(source.substr(5)); };
  const Mount plain{1, 0, 0, 1, "/", "/a", "fuse", "/dev/loop3"};
  const Mount named{2, 0, 0, 2, "/", "/b", "fuse.sshfs", "/dev/loop3"};
  const Mount block{3, 0, 7, 4, "/", "/c", "fuseblk", "/dev/loop4"};
  const Mount kernels{4, 0, 7, 5, "/", "/d", "ext4", "/dev/loop5"};
  const auto volumes = imageMounts({plain, named, block, kernels}, loopOf);
  ASSERT_EQ(volumes.size(), 2u);
  EXPECT_EQ(volumes[0].loopName, "loop4");
  EXPECT_EQ(volumes[1].loopName, "loop5");
}

}  // namespace
}  // namespace quillmont
