#include "monitor/attached_images.h"

#include <gtest/gtest.h>

#include "platform/PropertyList.h"

namespace quillmont {
namespace {

using Array = PropertyListArray;
using Dictionary = PropertyListDictionary;
using Entries = std::vector<ScanEntry>;

PropertyList entity(const std::string& devEntry, const std::string& mountPoint) {
  return Dictionary{{"dev-entry", devEntry}, {"mount-point", mountPoint}};
}

PropertyList image(const std::string& path, Array entities) {
  return Dictionary{{"image-path", path}, {"system-entities", std::move(entities)}};
}

PropertyList list(Array images) {
  return Dictionary{{"images", std::move(images)}};
}

TEST(AttachedImages, EmptyImagesArrayYieldsNothing) {
  EXPECT_EQ(readAttachedImages(list({})), Entries());
}

TEST(AttachedImages, ListOfAnyOtherShapeYieldsNothing) {
  EXPECT_EQ(readAttachedImages(PropertyList("text")), Entries());
  EXPECT_EQ(readAttachedImages(PropertyList(Array{})), Entries());
  EXPECT_EQ(readAttachedImages(PropertyList(Dictionary{})), Entries());
  EXPECT_EQ(readAttachedImages(Dictionary{{"framework", "1"}}), Entries());
  EXPECT_EQ(readAttachedImages(Dictionary{{"images", "none"}}), Entries());
}

TEST(AttachedImages, OneElementThatIsNoDictionaryEmptiesTheWholeResult) {
  const auto good = image("/a.dmg", {entity("/dev/disk4s1", "/Volumes/A")});
  EXPECT_EQ(readAttachedImages(list({good})).size(), 1u);
  EXPECT_EQ(readAttachedImages(list({good, PropertyList("stray")})), Entries());
}

TEST(AttachedImages, OrderOfTheToolIsKept) {
  const auto entries =
      readAttachedImages(list({image("/z.dmg", {entity("/dev/disk5s1", "/Volumes/Z")}),
                               image("/a.dmg", {entity("/dev/disk4s1", "/Volumes/A")})}));
  EXPECT_EQ(entries, (Entries{{"/z.dmg", "/Volumes/Z", "/dev/disk5s1"},
                              {"/a.dmg", "/Volumes/A", "/dev/disk4s1"}}));
}

TEST(AttachedImages, ImageMountedOutsideVolumesIsNotListed) {
  EXPECT_EQ(readAttachedImages(list({image("/a.dmg", {entity("/dev/disk4s1", "/mnt/a")})})),
            Entries());
}

TEST(AttachedImages, MountPointOfExactlyVolumesIsNotBelowIt) {
  EXPECT_EQ(readAttachedImages(list({image("/a.dmg", {entity("/dev/disk4s1", "/Volumes")})})),
            Entries());
}

TEST(AttachedImages, PrefixOfVolumesIsCaseSensitive) {
  EXPECT_EQ(readAttachedImages(list({image("/a.dmg", {entity("/dev/disk4s1", "/volumes/A")})})),
            Entries());
}

TEST(AttachedImages, FirstOfTwoVolumesIsTaken) {
  const auto entries = readAttachedImages(list(
      {image("/a.dmg", {entity("/dev/disk4s1", "/mnt/x"), entity("/dev/disk4s2", "/Volumes/Two"),
                        entity("/dev/disk4s3", "/Volumes/Three")})}));
  EXPECT_EQ(entries, (Entries{{"/a.dmg", "/Volumes/Two", "/dev/disk4s2"}}));
}

TEST(AttachedImages, VolumeWithoutDeviceNodeIsPassedOver) {
  const PropertyList noNode = Dictionary{{"mount-point", "/Volumes/A"}};
  EXPECT_EQ(readAttachedImages(list({image("/a.dmg", {noNode})})), Entries());
  const auto entries =
      readAttachedImages(list({image("/a.dmg", {noNode, entity("/dev/disk4s2", "/Volumes/B")})}));
  EXPECT_EQ(entries, (Entries{{"/a.dmg", "/Volumes/B", "/dev/disk4s2"}}));
}

TEST(AttachedImages, UnmountedPartitionIsPassedOver) {
  const PropertyList scheme = Dictionary{{"dev-entry", "/dev/disk4"}};
  const auto entries =
      readAttachedImages(list({image("/a.dmg", {scheme, entity("/dev/disk4s1", "/Volumes/A")})}));
  EXPECT_EQ(entries.size(), 1u);
}

TEST(AttachedImages, FirstListingOfAnImagePathWins) {
  const auto entries =
      readAttachedImages(list({image("/a.dmg", {entity("/dev/disk4s1", "/Volumes/A")}),
                               image("/a.dmg", {entity("/dev/disk5s1", "/Volumes/A 1")})}));
  EXPECT_EQ(entries, (Entries{{"/a.dmg", "/Volumes/A", "/dev/disk4s1"}}));
}

TEST(AttachedImages, ListingWithoutVolumeDoesNotHideALaterOneOfTheSamePath) {
  const auto entries =
      readAttachedImages(list({image("/a.dmg", {entity("/dev/disk4s1", "/mnt/a")}),
                               image("/a.dmg", {entity("/dev/disk5s1", "/Volumes/A")})}));
  EXPECT_EQ(entries, (Entries{{"/a.dmg", "/Volumes/A", "/dev/disk5s1"}}));
}

TEST(AttachedImages, ValuesOfTheWrongTypeCountAsAbsent) {
  const PropertyList numberedPath =
      Dictionary{{"image-path", std::int64_t{7}},
                 {"system-entities", Array{entity("/dev/disk4s1", "/Volumes/A")}}};
  const PropertyList textEntities =
      Dictionary{{"image-path", "/b.dmg"}, {"system-entities", "none"}};
  const PropertyList mixedEntities =
      image("/c.dmg", {entity("/dev/disk4s1", "/Volumes/C"), PropertyList(true)});
  const auto last = image("/d.dmg", {entity("/dev/disk4s1", "/Volumes/D")});
  const auto entries = readAttachedImages(
      list({numberedPath, textEntities, mixedEntities, PropertyList(Dictionary{}), last}));
  EXPECT_EQ(entries, (Entries{{"/d.dmg", "/Volumes/D", "/dev/disk4s1"}}));
}

}  // namespace
}  // namespace quillmont
