#include "platform/linux/ImageTable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

Mount mountOf(int id, const std::string& node, const std::string& place,
              const std::string& root = "/", const std::string& type = "ext4", int parent = 1) {
  return {id, parent, 7, 0, root, place, type, node};
}

/// Loops "loop0" (/a.img, partitions 1 and 2) and "loop12" (/b.img) with these mounts and ghosts.
class ImageTables : public ::testing::Test {
 protected:
  void mounted(const std::string& loopName, const Mount& mount) {
    mounts_.push_back(mount);
    volumes_.push_back({loopName, mount.source, mount});
  }

  void ghost(const std::string& loopName, const std::string& node, const std::string& place) {
    ghosts_.push_back({loopName, 1, "/a.img", node, place, 99, 1, 1, false});
  }

  ImageTable table() const {
    return ImageTable({{"loop0", "/a.img", 1, false}, {"loop12", "/b.img", 2, false}},
                      {"loop0p1", "loop0p2"}, mounts_, volumes_, ghosts_, "ann");
  }

  std::vector<ImageEntity> entities(std::size_t image) const {
    return table().images().at(image).entities;
  }

  std::vector<Mount> mounts_ = {mountOf(1, "/dev/vda", "/", "/", "ext4", 0)};
  std::vector<VolumeMount> volumes_;
  std::vector<Ghost> ghosts_;
};

TEST_F(ImageTables, ListTheDeviceAndItsPartitionsWhenNothingIsMounted) {
  EXPECT_THAT(entities(0),
              ElementsAre(ImageEntity{"/dev/loop0", ""}, ImageEntity{"/dev/loop0p1", ""},
                          ImageEntity{"/dev/loop0p2", ""}));
  EXPECT_THAT(entities(1), ElementsAre(ImageEntity{"/dev/loop12", ""}));
}

TEST_F(ImageTables, GiveEachMountToItsDevice) {
  mounted("loop0", mountOf(10, "/dev/loop0p2", "/media/ann/two"));
  mounted("loop12", mountOf(11, "/dev/loop12", "/media/ann/b"));
  EXPECT_THAT(entities(0),
              ElementsAre(ImageEntity{"/dev/loop0", ""}, ImageEntity{"/dev/loop0p1", ""},
                          ImageEntity{"/dev/loop0p2", "/media/ann/two"}));
  EXPECT_THAT(entities(1), ElementsAre(ImageEntity{"/dev/loop12", "/media/ann/b"}));
}

TEST_F(ImageTables, ListADeviceOnceForEachPlace) {
  mounted("loop0", mountOf(10, "/dev/loop0p1", "/mnt"));
  mounted("loop0", mountOf(11, "/dev/loop0p1", "/media/ann/x"));
  mounted("loop0", mountOf(12, "/dev/loop0p1", "/mnt"));
  EXPECT_THAT(
      entities(0),
      ElementsAre(ImageEntity{"/dev/loop0", ""}, ImageEntity{"/dev/loop0p1", "/mnt"},
                  ImageEntity{"/dev/loop0p1", "/media/ann/x"}, ImageEntity{"/dev/loop0p2", ""}));
}

TEST_F(ImageTables, LeaveOutABoundFolder) {
  mounted("loop12", mountOf(10, "/dev/loop12", "/srv/part", "/folder"));
  EXPECT_THAT(entities(1), ElementsAre(ImageEntity{"/dev/loop12", ""}));
  EXPECT_EQ(table().mountsOf("loop12").size(), 1u);
}

TEST_F(ImageTables, TakeASubvolumeOfBtrfsForAVolume) {
  mounted("loop12", mountOf(10, "/dev/loop12", "/media/ann/b", "/@home", "btrfs"));
  EXPECT_THAT(entities(1), ElementsAre(ImageEntity{"/dev/loop12", "/media/ann/b"}));
}

TEST_F(ImageTables, ListAMappingOfTheImageAfterItsDevices) {
  mounted("loop12", mountOf(10, "/dev/mapper/safe", "/media/ann/b"));
  EXPECT_THAT(entities(1), ElementsAre(ImageEntity{"/dev/loop12", ""},
                                       ImageEntity{"/dev/mapper/safe", "/media/ann/b"}));
}

TEST_F(ImageTables, ListAGhostWithThePlaceItHad) {
  ghost("loop0", "/dev/loop0p1", "/media/ann/x");
  EXPECT_THAT(entities(0), ElementsAre(ImageEntity{"/dev/loop0", ""},
                                       ImageEntity{"/dev/loop0p1", "/media/ann/x"},
                                       ImageEntity{"/dev/loop0p2", ""}));
}

TEST_F(ImageTables, ListAVolumeThatCameBackOnce) {
  mounted("loop0", mountOf(10, "/dev/loop0p1", "/media/ann/x"));
  ghost("loop0", "/dev/loop0p1", "/media/ann/x");
  EXPECT_EQ(entities(0).size(), 3u);
}

TEST_F(ImageTables, FindAnImageByPresentedPlaceRealPlaceAndDevice) {
  mounted("loop12", mountOf(10, "/dev/loop12", "/media/ann/b"));
  const auto all = table();
  for (const char* place :
       {"/Volumes/b", "/Volumes/b/", "/media/ann/b", "/media/ann/b//", "/dev/loop12"}) {
    ASSERT_TRUE(all.find(place)) << place;
    EXPECT_EQ(all.find(place)->loop.name, "loop12");
  }
  for (const char* place : {"/", "", "/Volumes", "/Volumes/", "b", "/dev/vda", "/Volumes/b/c"}) {
    EXPECT_FALSE(all.find(place)) << place;
  }
}

TEST_F(ImageTables, FindTheVolumeOnTop) {
  mounted("loop0", mountOf(10, "/dev/loop0p1", "/media/ann/x"));
  mounted("loop12", mountOf(11, "/dev/loop12", "/media/ann/x"));
  EXPECT_EQ(table().find("/Volumes/x")->loop.name, "loop12");
}

TEST_F(ImageTables, TellAGhostFromTheVolumeThatHasItsPlaceNow) {
  ghost("loop0", "/dev/loop0p1", "/media/ann/x");
  EXPECT_EQ(table().find("/Volumes/x")->loop.name, "loop0");
  mounted("loop12", mountOf(10, "/dev/loop12", "/media/ann/x"));
  const auto both = table();
  EXPECT_EQ(both.find("/Volumes/x")->loop.name, "loop12");
  ASSERT_TRUE(both.find("/Volumes/x (loop0)"));
  EXPECT_EQ(both.find("/Volumes/x (loop0)")->loop.name, "loop0");
  EXPECT_EQ(entities(0).at(1), (ImageEntity{"/dev/loop0p1", "/media/ann/x (loop0)"}));
}

TEST_F(ImageTables, TellWhatIsMountedOverSomethingElse) {
  auto above = mountOf(11, "/dev/loop0p1", "/media/ann/x");
  above.parentId = 10;
  auto beside = mountOf(12, "/dev/loop0p1", "/media/ann/y");
  beside.parentId = 10;
  mounted("loop12", mountOf(10, "/dev/loop12", "/media/ann/x"));
  EXPECT_TRUE(table().coversAnother(above));
  EXPECT_FALSE(table().coversAnother(beside));
}

TEST_F(ImageTables, GiveTheMountsOfAnImageTheLatestFirst) {
  mounted("loop0", mountOf(10, "/dev/loop0p1", "/one"));
  mounted("loop12", mountOf(11, "/dev/loop12", "/other"));
  mounted("loop0", mountOf(12, "/dev/loop0p2", "/two"));
  const auto mounts = table().mountsOf("loop0");
  ASSERT_EQ(mounts.size(), 2u);
  EXPECT_EQ(mounts[0].mount.id, 12);
  EXPECT_EQ(mounts[1].mount.id, 10);
}

TEST_F(ImageTables, TellWhatElseIsMountedInsideAVolume) {
  mounted("loop0", mountOf(10, "/dev/loop0p1", "/one"));
  mounted("loop0", mountOf(11, "/dev/loop0p2", "/one/two", "/", "ext4", 10));
  EXPECT_EQ(table().mountInside(table().mountsOf("loop0")), "");
  mounted("loop12", mountOf(12, "/dev/loop12", "/one/two/b", "/", "ext4", 11));
  EXPECT_EQ(table().mountInside(table().mountsOf("loop0")), "/one/two/b");
  EXPECT_EQ(table().mountInside(table().mountsOf("loop12")), "");
}

TEST_F(ImageTables, TellWhichOtherImageLiesOnAVolume) {
  mounted("loop0", mountOf(10, "/dev/loop0p1", "/one"));
  mounted("loop0", mountOf(11, "/dev/loop0p2", "/two"));
  const auto inside = [this](const std::string& inner) {
    const ImageTable table({{"loop0", "/two/own.img", 1, false}, {"loop12", inner, 2, false}}, {},
                           mounts_, volumes_, {}, "ann");
    return table.imageInside(table.mountsOf("loop0"));
  };
  EXPECT_EQ(inside("/two/folder/b.img"), "/two/folder/b.img");
  EXPECT_EQ(inside("/two.img"), "");
  EXPECT_EQ(inside("/twofold/b.img"), "");
}

}  // namespace
}  // namespace quillmont
