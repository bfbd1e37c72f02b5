// The disk-image tool attaches real image files to real loop devices, and lists them.

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <fstream>
#include <set>

#include "platform/posix/Descriptor.h"
#include "tests/e2e/DiskImageToolTest.h"

namespace quillmont {
namespace {

using namespace std::chrono_literals;
using testing::DiskImages;
using ::testing::ElementsAre;
using testing::eventually;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

using DiskImageTool = testing::DiskImageToolTest;

TEST_F(DiskImageTool, AttachesAndDetachesExt4) {
  comesAndGoes(images_.makeExt4("a.img", "Quill One"), "Quill One");
}

TEST_F(DiskImageTool, DeviceNodeTellsSinceWhenTheImageIsThere) {
  const auto image = images_.makeExt4("a.img", "Quill One");
  for (int round = 0; round < 2; ++round) {
    const auto before = time(nullptr);
    attach(image);
    const auto node = "/dev/" + DiskImages::loopsOf(image).at(0);
    struct stat status = {};
    ASSERT_EQ(stat(node.c_str(), &status), 0);
    EXPECT_GE(status.st_mtim.tv_sec, before);
    detach("/Volumes/Quill One");
    const timespec longAgo[2] = {{1'000'000'000, 0}, {1'000'000'000, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, node.c_str(), longAgo, 0), 0);
  }
}

TEST_F(DiskImageTool, AttachesAndDetachesSquashfs) {
  if (const auto reason = DiskImages::whyImpossible("squashfs"); !reason.empty()) {
    GTEST_SKIP() << reason;
  }
  comesAndGoes(images_.makeSquashfs("a.img"), "disk");  // squashfs has no label
}

TEST_F(DiskImageTool, AttachesAndDetachesBtrfs) {
  if (const auto reason = DiskImages::whyImpossible("btrfs"); !reason.empty()) {
    GTEST_SKIP() << reason;
  }
  comesAndGoes(images_.makeBtrfs("a.img", "Quill Tree"), "Quill Tree");
}

TEST_F(DiskImageTool, AttachesAndDetachesFat) {
  if (const auto reason = DiskImages::whyImpossible("vfat"); !reason.empty()) {
    GTEST_SKIP() << reason;
  }
  const auto image = images_.makeFat("a.img", "QUILL");
  attach(image);
  EXPECT_EQ(listed(image), std::vector<std::string>{"/Volumes/QUILL"});
  detach("/Volumes/QUILL");
  expectGone(image);
}

TEST_F(DiskImageTool, SaysWhichFileSystemTheKernelDoesNotKnow) {
  if (DiskImages::whyImpossible("vfat").empty()) GTEST_SKIP() << "the kernel knows vfat";
  const auto image = images_.makeFat("a.img", "QUILL");
  const auto outcome = images_.attach(image);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.standardError, HasSubstr("vfat"));
  expectGone(image);
}

TEST_F(DiskImageTool, MountsAndDetachesEveryPartition) {
  const auto image = images_.makePartitioned("a.img", {"Quill P1", "Quill P2"});
  attach(image);
  EXPECT_EQ(listed(image),
            (std::vector<std::string>{"", "/Volumes/Quill P1", "/Volumes/Quill P2"}));
  detach("/Volumes/Quill P2");
  expectGone(image);
  EXPECT_FALSE(std::filesystem::exists(DiskImages::realPlace("Quill P1")));
}

TEST_F(DiskImageTool, TakesEveryNameOfAnImage) {
  for (const std::string name :
       {"-x.img", "翼 影像.dmg", "a b\tc.img", "it's \"so\".img", "back\\slash\\040.img",
        "new\nline.img", "ends.img (deleted)", "<&>.img", "%s.img"}) {
    SCOPED_TRACE(name);
    comesAndGoes(images_.makeExt4(name, "Quill Name"), "Quill Name");
  }
}

TEST_F(DiskImageTool, TakesEveryLabel) {
  for (const std::string label :
       {"翼影像", "a b\tc", "it's \"so\"", "b\\134\\", "-force", "#1 <&>", "line\nfeed", "..."}) {
    SCOPED_TRACE(label);
    comesAndGoes(images_.makeExt4("a.img", label), label);
  }
  comesAndGoes(images_.makeExt4("a.img", "a/b"), "a_b");
}

TEST_F(DiskImageTool, ANameWithALeadingDashIsNoOption) {
  images_.makeExt4("-plist", "Quill Dash");
  const auto outcome = testing::run({"sh", "-c", "cd \"$1\" && exec \"$2\" attach -plist", "sh",
                                     images_.path(), DiskImages::toolPath()},
                                    images_.environment());
  EXPECT_EQ(outcome.status, 0) << outcome.standardError;
  EXPECT_THAT(outcome.standardOutput, HasSubstr("\t/Volumes/Quill Dash\n"));
}

TEST_F(DiskImageTool, SpellsBytesThatAreNoTextAndFindsThemAgain) {
  const auto image = images_.makeExt4("a.img", "q\xff\x01");
  attach(image);
  EXPECT_EQ(listed(image), std::vector<std::string>{"/Volumes/q\\xff\\x01"});
  detach("/Volumes/q\\xff\\x01");
  expectGone(image);
}

TEST_F(DiskImageTool, AVolumeWithoutLabelIsNamedByItsIdentifier) {
  const auto image = images_.makeExt4("a.img", "");
  attach(image);
  const auto places = listed(image);
  ASSERT_TRUE(places);
  ASSERT_THAT(*places, SizeIs(1));
  EXPECT_EQ(places->front().size(), std::string("/Volumes/").size() + 36);
  detach(places->front());
  expectGone(image);
}

TEST_F(DiskImageTool, TwoVolumesOfOneLabelGetTwoPlaces) {
  const auto first = images_.makeExt4("a.img", "Quill");
  const auto second = images_.makeExt4("b.img", "Quill");
  attach(first);
  attach(second);
  EXPECT_EQ(listed(first), std::vector<std::string>{"/Volumes/Quill"});
  EXPECT_EQ(listed(second), std::vector<std::string>{"/Volumes/Quill1"});
  detach("/Volumes/Quill");
  expectGone(first);
  EXPECT_EQ(listed(second), std::vector<std::string>{"/Volumes/Quill1"});
}

TEST_F(DiskImageTool, VolumesOfOneLabelThatComeAtOnceGetAPlaceEach) {
  std::vector<std::string> images;
  std::vector<std::unique_ptr<testing::Program>> programs;
  for (int i = 0; i < 4; ++i) {
    images.push_back(images_.makeExt4(std::to_string(i) + ".img", "Quill Crowd"));
  }
  for (const auto& image : images) {
    programs.push_back(std::make_unique<testing::Program>(
        std::vector<std::string>{DiskImages::toolPath(), "attach", image}, images_.environment()));
  }
  for (const auto& program : programs) EXPECT_EQ(program->waitForExit(20s), 0) << program->output();
  std::set<std::string> places;
  for (const auto& image : images) {
    for (const auto& place : listed(image).value_or(std::vector<std::string>{})) {
      places.insert(place);
    }
  }
  EXPECT_THAT(places, ElementsAre("/Volumes/Quill Crowd", "/Volumes/Quill Crowd1",
                                  "/Volumes/Quill Crowd2", "/Volumes/Quill Crowd3"));
}

TEST_F(DiskImageTool, AttachingTwiceMakesOneDevice) {
  const auto image = images_.makeExt4("a.img", "Quill Twice");
  std::filesystem::create_hard_link(image, images_.path() + "/other name.img");
  std::filesystem::create_symlink(image, images_.path() + "/link.img");
  attach(image);
  for (const char* name : {"a.img", "other name.img", "link.img"}) {
    const auto again = images_.attach(images_.path() + "/" + name);
    EXPECT_EQ(again.status, 0) << again.standardError;
    EXPECT_THAT(again.standardOutput, HasSubstr("\t/Volumes/Quill Twice\n"));
  }
  EXPECT_THAT(DiskImages::loopsOf(image), SizeIs(1));
}

TEST_F(DiskImageTool, AttachingManyTimesAtOnceMakesOneDevice) {
  const auto image = images_.makeExt4("a.img", "Quill Crowd");
  std::vector<std::unique_ptr<testing::Program>> programs;
  for (int i = 0; i < 6; ++i) {
    programs.push_back(std::make_unique<testing::Program>(
        std::vector<std::string>{DiskImages::toolPath(), "attach", image}, images_.environment()));
  }
  for (const auto& program : programs) EXPECT_EQ(program->waitForExit(20s), 0) << program->output();
  EXPECT_THAT(DiskImages::loopsOf(image), SizeIs(1));
  EXPECT_EQ(listed(image), std::vector<std::string>{"/Volumes/Quill Crowd"});
}

TEST_F(DiskImageTool, ADeviceThatIsOnlySetUpIsUsedAgain) {
  const auto image = images_.makeExt4("a.img", "Quill Loop");
  ASSERT_EQ(testing::run({"losetup", "--find", image}).status, 0);
  ASSERT_TRUE(eventually([&] { return DiskImages::loopsOf(image).size() == 1; }, 5s));
  EXPECT_EQ(listed(image), std::vector<std::string>{""});
  attach(image);
  EXPECT_THAT(DiskImages::loopsOf(image), SizeIs(1));
  detach("/Volumes/Quill Loop");
  expectGone(image);
}

TEST_F(DiskImageTool, AnImageThatNobodyMayWriteToIsMountedReadOnly) {
  const auto image = images_.makeExt4("a.img", "Quill Fixed");
  chmod(image.c_str(), 0444);
  attach(image);
  const auto file = DiskImages::realPlace("Quill Fixed") + "/new";
  EXPECT_EQ(open(file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600), -1);
  EXPECT_EQ(errno, EROFS);
  detach("/Volumes/Quill Fixed");
  expectGone(image);
}

TEST_F(DiskImageTool, VolumesCarryNoPrivilegesAndNoDevices) {
  attach(images_.makeExt4("a.img", "Quill Safe"));
  const auto table = readFile("/proc/self/mountinfo");
  ASSERT_TRUE(table);
  const auto at = table->find("Quill\\040Safe");
  ASSERT_NE(at, std::string::npos);
  EXPECT_THAT(table->substr(at, table->find('\n', at) - at), HasSubstr(" rw,nosuid,nodev,"));
}

TEST_F(DiskImageTool, UnmountingByHandReleasesTheDevice) {
  const auto image = images_.makeExt4("a.img", "Quill Hand");
  attach(image);
  ASSERT_EQ(umount2(DiskImages::realPlace("Quill Hand").c_str(), 0), 0);
  EXPECT_TRUE(eventually([&] { return DiskImages::loopsOf(image).empty(); }, 5s));
  attach(image);  // onto the empty folder that is still there
  EXPECT_EQ(listed(image), std::vector<std::string>{"/Volumes/Quill Hand"});
}

TEST_F(DiskImageTool, AFolderWithFilesIsNotCovered) {
  const auto place = DiskImages::realPlace("Quill Folder");
  std::filesystem::create_directories(place + "/precious");
  chmod(DiskImages::realPlace("").c_str(), 0700);
  const auto image = images_.makeExt4("a.img", "Quill Folder");
  EXPECT_EQ(images_.attach(image).status, 0);
  EXPECT_EQ(listed(image), std::vector<std::string>{"/Volumes/Quill Folder1"});
  detach("/Volumes/Quill Folder1");
  EXPECT_TRUE(std::filesystem::exists(place + "/precious"));
  std::filesystem::remove_all(place);
}

TEST_F(DiskImageTool, ALinkInTheMediaFolderIsNotFollowed) {
  const auto place = DiskImages::realPlace("Quill Link");
  const auto elsewhere = images_.path() + "/elsewhere";
  std::filesystem::create_directories(DiskImages::realPlace(""));
  chmod(DiskImages::realPlace("").c_str(), 0700);
  std::filesystem::create_directory(elsewhere);
  std::filesystem::create_symlink(elsewhere, place);
  const auto image = images_.makeExt4("a.img", "Quill Link");
  EXPECT_EQ(images_.attach(image).status, 0);
  EXPECT_EQ(listed(image), std::vector<std::string>{"/Volumes/Quill Link1"});
  std::filesystem::remove(place);
}

TEST_F(DiskImageTool, WhatIsNoImageIsRefusedAndLeavesNothingAttached) {
  const auto empty = images_.path() + "/empty.img";
  std::ofstream(empty).close();
  const auto noise = images_.path() + "/noise.img";
  std::ofstream(noise) << std::string(1 << 20, 'x');
  const auto pipe = images_.path() + "/pipe.img";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  const std::vector<std::string> refused = {
      empty, noise, pipe, images_.path(), images_.path() + "/none.img", "/dev/null", ""};
  for (const auto& image : refused) {
    const auto outcome = images_.attach(image);
    EXPECT_EQ(outcome.status, 1) << image;
    EXPECT_THAT(outcome.standardError, StartsWith("hdiutil: attach failed - ")) << image;
    EXPECT_THAT(DiskImages::loopsOf(image), IsEmpty());
  }
}

TEST_F(DiskImageTool, ADamagedFileSystemLeavesNothingAttached) {
  const auto image = images_.makeExt4("a.img", "Quill Broken");
  const Descriptor file(open(image.c_str(), O_WRONLY | O_CLOEXEC));
  const std::string zeros(1 << 18, '\0');  // over the group descriptors, behind the superblock
  ASSERT_EQ(pwrite(file.get(), zeros.data(), zeros.size(), 2048), 1 << 18);
  const auto outcome = images_.attach(image);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.standardError, HasSubstr("cannot mount"));
  expectGone(image);
  EXPECT_FALSE(std::filesystem::exists(DiskImages::realPlace("Quill Broken")));
}

TEST_F(DiskImageTool, InfoForPeopleNamesImageDeviceAndPlace) {
  const auto image = images_.makeExt4("a.img", "Quill Info");
  attach(image);
  EXPECT_THAT(images_.tool({"info"}).standardOutput,
              HasSubstr("image-path: " + image + "\n/dev/" + DiskImages::loopsOf(image).front() +
                        "\t/Volumes/Quill Info\n"));
}

TEST(DiskImageToolArguments, WrongOnesGetTheUsage) {
  const DiskImages images;
  for (const auto& arguments : std::vector<std::vector<std::string>>{{},
                                                                     {"info", "-xml"},
                                                                     {"attach"},
                                                                     {"attach", "a", "b"},
                                                                     {"detach"},
                                                                     {"detach", "a", "-quiet"},
                                                                     {"verify", "a"}}) {
    const auto outcome = images.tool(arguments);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.standardError, StartsWith("usage: hdiutil "));
  }
}

TEST(DiskImageToolArguments, NeedTheOtherHalfOfTheToolForAChangeAlone) {
  const testing::TemporaryFolder folder;
  const auto tool = DiskImages::copyToolTo(folder.path());
  std::filesystem::remove(tool + "-control");
  const testing::Environment environment = {{"XDG_RUNTIME_DIR", folder.path()}};
  EXPECT_EQ(testing::run({tool, "info"}, environment).status, 0);
  for (const std::string verb : {"attach", "detach"}) {
    const auto outcome = testing::run({tool, verb, "/none"}, environment);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.standardError, "hdiutil: " + verb + " failed - cannot start " + tool +
                                         "-control: No such file or directory\n");
  }
}

}  // namespace
}  // namespace quillmont
