#include "platform/linux/tools/hdiutil/info.h"

#include <gtest/gtest.h>

namespace quillmont {
namespace {

using Dictionary = PropertyListDictionary;
using Array = PropertyListArray;

VolumeMount mounted(const std::string& loopName, const std::string& node,
                    const std::string& place) {
  return {loopName, node, {10, 1, 7, 0, "/", place, "ext4", node}};
}

ImageTable tableOf(std::vector<LoopDevice> loops, const std::vector<std::string>& partitions,
                   std::vector<VolumeMount> volumes) {
  std::vector<Mount> mounts;
  for (const auto& volume : volumes) mounts.push_back(volume.mount);
  return ImageTable(std::move(loops), partitions, std::move(mounts), std::move(volumes), {}, "ann");
}

TEST(ImageInfo, IsAListWithPresentedPlaces) {
  const auto table = tableOf({{"loop0", "/a.img", 1, false}, {"loop12", "/b.img", 2, false}},
                             {"loop0p1", "loop0p2"},
                             {mounted("loop0", "/dev/loop0p1", "/media/ann/a \"b\""),
                              mounted("loop12", "/dev/loop12", "/mnt/\xff")});
  const Array first = {
      Dictionary{{"dev-entry", "/dev/loop0"}},
      Dictionary{{"dev-entry", "/dev/loop0p1"}, {"mount-point", "/Volumes/a \"b\""}},
      Dictionary{{"dev-entry", "/dev/loop0p2"}}};
  const Array second = {Dictionary{{"dev-entry", "/dev/loop12"}, {"mount-point", "/mnt/\\xff"}}};
  const Array images = {Dictionary{{"image-path", "/a.img"}, {"system-entities", first}},
                        Dictionary{{"image-path", "/b.img"}, {"system-entities", second}}};
  EXPECT_EQ(infoList(table), PropertyList(Dictionary{{"images", images}}));
}

TEST(ImageInfo, IsAnEmptyListWithoutImages) {
  const auto empty = tableOf({}, {}, {});
  EXPECT_EQ(infoList(empty), PropertyList(Dictionary{{"images", Array()}}));
  EXPECT_EQ(infoText(empty), "");
}

TEST(ImageInfo, IsReadableForPeople) {
  const auto table =
      tableOf({{"loop0", "/a.img", 1, false}, {"loop12", "/b.img", 2, false}},
              {"loop0p1", "loop0p2"}, {mounted("loop12", "/dev/loop12", "/media/ann/b")});
  EXPECT_EQ(infoText(table),
            "image-path: /a.img\n/dev/loop0\n/dev/loop0p1\n/dev/loop0p2\n"
            "image-path: /b.img\n/dev/loop12\t/Volumes/b\n");
}

TEST(ImageInfo, TellsADeletedImageFromTheNewOneUnderItsName) {
  const auto table = tableOf({{"loop0", "/a.img", 1, true}, {"loop1", "/a.img", 2, false}}, {}, {});
  EXPECT_EQ(infoText(table),
            "image-path: /a.img (deleted)\n/dev/loop0\nimage-path: /a.img\n/dev/loop1\n");
  const auto list = infoList(table);
  const auto& images = *list.find("images")->array();
  ASSERT_EQ(images.size(), 2u);
  EXPECT_EQ(*images[0].find("image-path")->string(), "/a.img (deleted)");
  EXPECT_EQ(*images[1].find("image-path")->string(), "/a.img");
}

TEST(ImageInfo, ListsADeletedImageAloneUnderTheNameItHad) {
  const auto table = tableOf({{"loop0", "/a.img", 1, true}, {"loop1", "/b.img", 2, false}}, {}, {});
  EXPECT_EQ(infoText(table), "image-path: /a.img\n/dev/loop0\nimage-path: /b.img\n/dev/loop1\n");
}

}  // namespace
}  // namespace quillmont
