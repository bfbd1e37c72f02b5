#include "platform/linux/tools/lsof/VolumeIdentity.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <map>

namespace quillmont {
namespace {

Mount mountAt(int id, int parent, unsigned minorNumber, const std::string& mountPoint) {
  Mount mount;
  mount.id = id;
  mount.parentId = parent;
  mount.deviceMajor = 7;
  mount.deviceMinor = minorNumber;
  mount.root = "/";
  mount.mountPoint = mountPoint;
  return mount;
}

Ghost ghostAt(const std::string& mountPoint, std::uint64_t mountId) {
  Ghost ghost;
  ghost.loopName = "loop9";
  ghost.mountPoint = mountPoint;
  ghost.mountId = mountId;
  ghost.superDevice = makedev(7, 9);
  ghost.statDevice = makedev(0, 99);
  return ghost;
}

class VolumeIdentityTest : public ::testing::Test {
 protected:
  std::optional<VolumeIdentity> identify(const std::string& path) {
    const VolumeSurroundings system = {mounts_, volumes_, ghosts_};
    const auto mountPoint = mountPointOfVolume(path, "ann", system);
    if (mountPoint.empty()) return std::nullopt;
    return identifyVolume(mountPoint, system, [this](const std::string& place) {
      const auto found = statuses_.find(place);
      return found == statuses_.end() ? std::nullopt : std::optional(found->second);
    });
  }

  std::vector<Mount> mounts_ = {mountAt(20, 1, 0, "/"), mountAt(21, 20, 1, "/media/ann/Disk"),
                                mountAt(22, 20, 2, "/run/media/ann/Other")};
  std::vector<VolumeMount> volumes_;
  std::vector<Ghost> ghosts_;
  std::map<std::string, MountPointStatus> statuses_;
};

TEST_F(VolumeIdentityTest, PresentedPathLeadsToTheMount) {
  EXPECT_EQ(identify("/Volumes/Disk"), (VolumeIdentity{{makedev(7, 1)}, {21}}));
  EXPECT_EQ(identify("/Volumes/Other"), (VolumeIdentity{{makedev(7, 2)}, {22}}));
}

TEST_F(VolumeIdentityTest, MountPointItselfIsUnderstood) {
  EXPECT_EQ(identify("/media/ann/Disk"), (VolumeIdentity{{makedev(7, 1)}, {21}}));
  EXPECT_EQ(identify("/"), (VolumeIdentity{{makedev(7, 0)}, {20}}));
}

TEST_F(VolumeIdentityTest, SlashesAtTheEndDoNotCount) {
  EXPECT_EQ(identify("/Volumes/Disk//"), identify("/Volumes/Disk"));
  EXPECT_EQ(identify("//"), identify("/"));
}

TEST_F(VolumeIdentityTest, FolderThatIsNoMountPointIsNoVolume) {
  EXPECT_FALSE(identify("/media/ann"));
  EXPECT_FALSE(identify("/Volumes/Disk/folder"));
  EXPECT_FALSE(identify("/Volumes"));
  EXPECT_FALSE(identify(""));
}

TEST_F(VolumeIdentityTest, OwnDeviceNumberOfTheRootIsAdded) {
  statuses_["/media/ann/Disk"] = {21, makedev(0, 43)};
  EXPECT_EQ(identify("/Volumes/Disk"), (VolumeIdentity{{makedev(7, 1), makedev(0, 43)}, {21}}));
}

TEST_F(VolumeIdentityTest, SameDeviceNumberIsNamedOnce) {
  statuses_["/media/ann/Disk"] = {21, makedev(7, 1)};
  EXPECT_EQ(identify("/Volumes/Disk"), (VolumeIdentity{{makedev(7, 1)}, {21}}));
}

TEST_F(VolumeIdentityTest, AnswerOfSomethingMountedAboveDoesNotCount) {
  statuses_["/media/ann/Disk"] = {77, makedev(0, 43)};
  EXPECT_EQ(identify("/Volumes/Disk"), (VolumeIdentity{{makedev(7, 1)}, {21}}));
}

TEST_F(VolumeIdentityTest, OtherMountsOfTheSameFileSystemCount) {
  mounts_.push_back(mountAt(30, 20, 1, "/srv/bind"));
  EXPECT_EQ(identify("/Volumes/Disk"), (VolumeIdentity{{makedev(7, 1)}, {21, 30}}));
}

TEST_F(VolumeIdentityTest, TopmostOfStackedMountsIsMeant) {
  mounts_.push_back(mountAt(31, 21, 5, "/media/ann/Disk"));
  EXPECT_EQ(identify("/Volumes/Disk"), (VolumeIdentity{{makedev(7, 5)}, {31}}));
}

TEST_F(VolumeIdentityTest, TopmostIsFoundInATableOfAnyOrder) {
  mounts_.insert(mounts_.begin(), mountAt(31, 21, 5, "/media/ann/Disk"));
  EXPECT_EQ(identify("/Volumes/Disk"), (VolumeIdentity{{makedev(7, 5)}, {31}}));
}

TEST_F(VolumeIdentityTest, GhostIsKnownByItsRecord) {
  ghosts_.push_back(ghostAt("/media/ann/Gone", 40));
  EXPECT_EQ(identify("/Volumes/Gone"), (VolumeIdentity{{makedev(7, 9), makedev(0, 99)}, {40}}));
}

TEST_F(VolumeIdentityTest, MountIdentifierOfAGhostThatWasGivenAwayDoesNotCount) {
  ghosts_.push_back(ghostAt("/media/ann/Gone", 22));
  EXPECT_EQ(identify("/Volumes/Gone"), (VolumeIdentity{{makedev(7, 9), makedev(0, 99)}, {}}));
}

TEST_F(VolumeIdentityTest, GhostAndNewMountAtOnePlaceAreBothMeant) {
  ghosts_.push_back(ghostAt("/media/ann/Disk", 40));
  EXPECT_EQ(identify("/Volumes/Disk"),
            (VolumeIdentity{{makedev(7, 1), makedev(7, 9), makedev(0, 99)}, {21, 40}}));
}

TEST_F(VolumeIdentityTest, AllVolumesAndGhostsOfAnImageAreMeantTogether) {
  volumes_ = {{"loop9", "/dev/loop9p1", mounts_[1]}, {"loop9", "/dev/loop9p2", mounts_[2]}};
  statuses_["/run/media/ann/Other"] = {22, makedev(0, 44)};
  ghosts_.push_back(ghostAt("/media/ann/Gone", 40));
  const VolumeIdentity whole{
      {makedev(7, 1), makedev(7, 2), makedev(0, 44), makedev(7, 9), makedev(0, 99)}, {21, 22, 40}};
  EXPECT_EQ(identify("/Volumes/Disk"), whole);
  EXPECT_EQ(identify("/Volumes/Gone"), whole);
}

TEST_F(VolumeIdentityTest, OtherImagesAndVolumesOfNoImageAreNotMeant) {
  volumes_ = {{"loop1", "/dev/loop1", mounts_[1]}, {"loop2", "/dev/loop2", mounts_[2]}};
  ghosts_.push_back(ghostAt("/media/ann/Gone", 40));
  EXPECT_EQ(identify("/Volumes/Disk"), (VolumeIdentity{{makedev(7, 1)}, {21}}));
  EXPECT_EQ(identify("/"), (VolumeIdentity{{makedev(7, 0)}, {20}}));
}

TEST_F(VolumeIdentityTest, MountIdentifierOfAGhostThatWasUnmountedDoesNotCount) {
  ghosts_.push_back(ghostAt("/media/ann/Gone", 40));
  ghosts_.back().unmounted = true;
  EXPECT_EQ(identify("/Volumes/Gone"), (VolumeIdentity{{makedev(7, 9), makedev(0, 99)}, {}}));
}

TEST_F(VolumeIdentityTest, DeviceNumberOfAGhostThatWasGivenAwayDoesNotCount) {
  auto next = mountAt(41, 20, 99, "/somewhere");
  next.deviceMajor = 0;
  mounts_.push_back(next);
  ghosts_.push_back(ghostAt("/media/ann/Gone", 40));
  EXPECT_EQ(identify("/Volumes/Gone"), (VolumeIdentity{{makedev(7, 9), makedev(0, 99)}, {40}}));
  ghosts_.back().unmounted = true;
  EXPECT_EQ(identify("/Volumes/Gone"), (VolumeIdentity{{makedev(7, 9)}, {}}));
}

TEST(CachedMountPointStatus, AgreesWithStat) {
  struct stat status = {};
  ASSERT_EQ(stat("/proc", &status), 0);
  const auto cached = cachedMountPointStatus("/proc");
  ASSERT_TRUE(cached);
  EXPECT_EQ(cached->device, status.st_dev);
}

TEST(CachedMountPointStatus, MissingFolderHasNone) {
  EXPECT_FALSE(cachedMountPointStatus("/nonexistent/folder"));
}

}  // namespace
}  // namespace quillmont
