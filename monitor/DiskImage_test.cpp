#include "monitor/DiskImage.h"

#include <gtest/gtest.h>

namespace quillmont {
namespace {

DiskImage backup() {
  return DiskImage("/Users/user/Backup.dmg", "/Volumes/Backup", "Backup", 12.5, true, {"Finder"},
                   false);
}

TEST(DiskImage, RecordsThatDifferOnlyInIdleSecondsAreNotEqual) {
  auto later = backup();
  later.idleSeconds = 13;
  EXPECT_NE(backup(), later);
  EXPECT_EQ(backup(), backup());
}

TEST(DiskImage, EveryFieldCountsForEquality) {
  const DiskImage other("/x.dmg", "/Volumes/x", "x", 1, false, {"x"}, true);
  auto image = backup();
  image.imagePath = other.imagePath;
  EXPECT_NE(image, backup());
  image = backup();
  image.mountPoint = other.mountPoint;
  EXPECT_NE(image, backup());
  image = backup();
  image.volumeName = other.volumeName;
  EXPECT_NE(image, backup());
  image = backup();
  image.inUse = other.inUse;
  EXPECT_NE(image, backup());
  image = backup();
  image.activeProcesses = other.activeProcesses;
  EXPECT_NE(image, backup());
  image = backup();
  image.isExcluded = other.isExcluded;
  EXPECT_NE(image, backup());
}

TEST(DiskImage, ProcessesAreComparedInTheirOrder) {
  auto one = backup();
  auto two = backup();
  one.activeProcesses = {"Finder", "Preview"};
  two.activeProcesses = {"Preview", "Finder"};
  EXPECT_NE(one, two);
}

TEST(DiskImage, RecordsOfOneImageFileHaveTheSameIdentity) {
  auto remounted = backup();
  remounted.mountPoint = "/Volumes/Backup 1";
  EXPECT_EQ(remounted.id(), backup().id());
  EXPECT_EQ(backup().id(), "/Users/user/Backup.dmg");
}

}  // namespace
}  // namespace quillmont
