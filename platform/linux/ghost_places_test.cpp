#include "platform/linux/ghost_places.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillmont {
namespace {

using ::testing::ElementsAre;

constexpr char kDisk[] = "/media/ann/Disk";

class GhostPlaces : public ::testing::Test {
 protected:
  void mounted(const std::string& loopName, const std::string& place) {
    Mount mount;
    mount.id = 10 + static_cast<int>(mounts_.size());
    mount.mountPoint = place;
    mounts_.push_back(mount);
    if (!loopName.empty()) volumes_.push_back({loopName, "/dev/" + loopName, mount});
  }

  Ghost& ghost(const std::string& loopName, std::uint64_t sequence) {
    Ghost ghost;
    ghost.loopName = loopName;
    ghost.loopSequence = sequence;
    ghost.mountPoint = kDisk;
    ghosts_.push_back(ghost);
    return ghosts_.back();
  }

  std::vector<std::string> places() {
    auto ghosts = ghosts_;
    nameGhostsApart(ghosts, mounts_, volumes_);
    std::vector<std::string> places;
    for (const auto& ghost : ghosts) places.push_back(ghost.mountPoint);
    return places;
  }

 private:
  std::vector<Ghost> ghosts_;
  std::vector<Mount> mounts_;
  std::vector<VolumeMount> volumes_;
};

TEST_F(GhostPlaces, AreKeptWhileNothingElseIsThere) {
  ghost("loop3", 7);
  mounted("loop4", "/media/ann/Other");
  EXPECT_THAT(places(), ElementsAre(kDisk));
}

TEST_F(GhostPlaces, AreLeftToAnotherImageOfThatName) {
  ghost("loop3", 7);
  mounted("loop4", kDisk);
  EXPECT_THAT(places(), ElementsAre("/media/ann/Disk (loop3)"));
}

TEST_F(GhostPlaces, AreLeftToAFileSystemOfNoImage) {
  ghost("loop3", 7);
  mounted("", kDisk);
  EXPECT_THAT(places(), ElementsAre("/media/ann/Disk (loop3)"));
}

TEST_F(GhostPlaces, AreSharedWithTheirOwnImageThatWasMountedAgain) {
  ghost("loop3", 7);
  mounted("loop3", kDisk);
  EXPECT_THAT(places(), ElementsAre(kDisk));
}

TEST_F(GhostPlaces, AreSharedWithTheirOwnImageThatWasMountedApart) {
  ghost("loop3", 7);
  mounted("loop4", kDisk);
  mounted("loop3", "/media/ann/Disk (loop3)");
  EXPECT_THAT(places(), ElementsAre("/media/ann/Disk (loop3)"));
}

TEST_F(GhostPlaces, AreKeptWhenOnlyWhatWasThereBeforeShowsAgain) {
  ghost("loop3", 7).covered = true;
  mounted("", kDisk);
  EXPECT_THAT(places(), ElementsAre(kDisk));
}

TEST_F(GhostPlaces, OfSeveralImagesAreTheLastOnes) {
  ghost("loop3", 9);
  ghost("loop4", 7);
  ghost("loop3", 9);
  EXPECT_THAT(places(), ElementsAre(kDisk, "/media/ann/Disk (loop4)", kDisk));
}

TEST_F(GhostPlaces, AreNeverThoseOfAVolumeThatIsCalledSo) {
  ghost("loop3", 7);
  mounted("loop4", kDisk);
  mounted("loop5", "/media/ann/Disk (loop3)");
  EXPECT_THAT(places(), ElementsAre("/media/ann/Disk (loop3) (loop3)"));
}

}  // namespace
}  // namespace quillmont
