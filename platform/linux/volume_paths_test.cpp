#include "platform/linux/volume_paths.h"

#include <gtest/gtest.h>

namespace quillmont {
namespace {

using MountPoints = std::vector<std::string>;

/// The presented name, after checking that it leads back to the mount point.
std::string thereAndBack(const std::string& mountPoint, MountPoints all = {}) {
  all.push_back(mountPoint);
  const auto presented = presentedVolumePath(mountPoint, "ann", all);
  EXPECT_EQ(volumeMountPoint(presented, "ann", all), mountPoint);
  return presented;
}

TEST(VolumePaths, TheUsersMediaFoldersArePresentedUnderVolumes) {
  EXPECT_EQ(thereAndBack("/media/ann/Backup 2"), "/Volumes/Backup 2");
  EXPECT_EQ(thereAndBack("/run/media/ann/Backup 2"), "/Volumes/Backup 2");
}

TEST(VolumePaths, AMountInsideAVolumeIsPresentedInsideIt) {
  EXPECT_EQ(thereAndBack("/media/ann/A/b"), "/Volumes/A/b");
}

TEST(VolumePaths, OtherPlacesKeepTheirPath) {
  for (const char* path : {"/", "/mnt", "/media", "/media/ann", "/media/ann/", "/media/anna/x",
                           "/media/bob/x", "/x/media/ann/y", "/Volumes/x"}) {
    EXPECT_EQ(thereAndBack(path), path);
  }
}

TEST(VolumePaths, WhatIsPresentedUnderVolumesIsTheUsers) {
  for (const char* path : {"/media/ann/x", "/run/media/ann/x", "/media/ann/A/b", "/Volumes/x"}) {
    EXPECT_TRUE(isVolumeOfUser(path, "ann")) << path;
  }
  for (const char* path : {"/", "/media/ann", "/media/ann/", "/media/anna/x", "/media/bob/x",
                           "/x/media/ann/y", "/Volumes"}) {
    EXPECT_FALSE(isVolumeOfUser(path, "ann")) << path;
  }
}

TEST(VolumePaths, OfTwoVolumesOfOneNameTheOneUnderMediaIsPresented) {
  EXPECT_EQ(thereAndBack("/media/ann/x", {"/run/media/ann/x"}), "/Volumes/x");
  EXPECT_EQ(thereAndBack("/run/media/ann/x", {"/media/ann/x"}), "/run/media/ann/x");
}

TEST(VolumePaths, AMountBelowVolumesItselfKeepsItsName) {
  EXPECT_EQ(thereAndBack("/media/ann/x", {"/Volumes/x"}), "/media/ann/x");
  EXPECT_EQ(thereAndBack("/Volumes/x", {"/media/ann/x"}), "/Volumes/x");
}

TEST(VolumePaths, NamesThatAPropertyListCanCarryStayAsTheyAre) {
  const std::string name = "/Volumes/\xe7\xbf\xbc \"q\" 'a' & <b>\\ \n\t \xf0\x9f\x93\xa6";
  EXPECT_EQ(thereAndBack("/media/ann" + name.substr(8)), name);
}

TEST(VolumePaths, UnprintableBytesAreSpelledAndLeadBack) {
  EXPECT_EQ(thereAndBack("/media/ann/a\x01z\x7f"), "/Volumes/a\\x01z\\x7f");
  EXPECT_EQ(thereAndBack("/mnt/\xff\xfe"), "/mnt/\\xff\\xfe");
}

TEST(VolumePaths, ANameThatOnlyLooksSpelledIsAnotherOne) {
  EXPECT_EQ(thereAndBack("/media/ann/\\x01"), "/Volumes/\\x5cx01");
  const MountPoints all = {"/media/ann/\x01", "/Volumes/\\x01", "/media/ann/\\x5cx01"};
  EXPECT_EQ(volumeMountPoint("/Volumes/\\x01", "ann", all), all[0]);
  EXPECT_EQ(volumeMountPoint("/Volumes/\\x5cx01", "ann", all), all[1]);
  EXPECT_EQ(volumeMountPoint("/Volumes/\\x5cx5cx01", "ann", all), all[2]);
}

TEST(VolumePaths, ABackslashThatSpellsNothingStays) {
  for (const char* const name : {"a\\", "\\x", "\\x1", "\\xg0", "\\xAB", "\\\\x"}) {
    EXPECT_EQ(presentable(name), name);
  }
}

TEST(VolumePaths, NothingIsPresentedUnderAnUnknownName) {
  const MountPoints all = {"/media/ann/x", "/mnt"};
  EXPECT_EQ(volumeMountPoint("/Volumes/y", "ann", all), "");
  EXPECT_EQ(volumeMountPoint("", "ann", all), "");
  EXPECT_EQ(volumeMountPoint("/media/ann/x", "ann", all), "");
}

TEST(VolumePaths, InvalidUtf8IsSpelledByteByByte) {
  EXPECT_EQ(presentable("a\xc3"), "a\\xc3");                           // cut short
  EXPECT_EQ(presentable("\xc0\xaf"), "\\xc0\\xaf");                    // overlong
  EXPECT_EQ(presentable("\xe0\x80\xaf"), "\\xe0\\x80\\xaf");           // overlong
  EXPECT_EQ(presentable("\xed\xa0\x80"), "\\xed\\xa0\\x80");           // surrogate
  EXPECT_EQ(presentable("\xf4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80");  // beyond Unicode
  EXPECT_EQ(presentable("\xef\xbf\xbf"), "\\xef\\xbf\\xbf");           // no character
  EXPECT_EQ(presentable("\x80"
                        "b"),
            "\\x80"
            "b");  // no start
  EXPECT_EQ(presentable("\xc3\xa9\xed\x9f\xbf"), "\xc3\xa9\xed\x9f\xbf");
}

TEST(VolumePaths, ACarriageReturnIsSpelled) {
  EXPECT_EQ(presentable("a\rb"), "a\\x0db");
}

}  // namespace
}  // namespace quillmont
