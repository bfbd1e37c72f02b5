#include "platform/linux/tools/hdiutil/UDisks.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <cstdio>
#include <filesystem>

#include "platform/posix/files.h"
#include "tests/support/Program.h"

namespace quillmont {
namespace {

TEST(UDisksObjects, AreNamedByTheDeviceWithTheBytesThatAPathOfTheBusCannotCarry) {
  const std::string devices = "/org/freedesktop/UDisks2/block_devices/";
  EXPECT_EQ(UDisks::objectOf("loop3p1"), devices + "loop3p1");
  EXPECT_EQ(UDisks::objectOf("dm-0"), devices + "dm_2d0");
  EXPECT_EQ(UDisks::objectOf("a_b!\xe7"), devices + "a_b_21_e7");
}

TEST(KernelNames, ComeFromTheDeviceWhateverItsNodeIsCalled) {
  const testing::TemporaryFolder folder;
  const std::string node = folder.path() + "/backup";
  std::error_code error;
  for (const auto& device : std::filesystem::directory_iterator("/sys/class/block", error)) {
    const auto number = readFile(device.path() / "dev");
    if (!number) continue;
    unsigned majorNumber = 0;
    unsigned minorNumber = 0;
    ASSERT_EQ(std::sscanf(number->c_str(), "%u:%u", &majorNumber, &minorNumber), 2);
    const auto id = makedev(majorNumber, minorNumber);
    if (mknod(node.c_str(), S_IFBLK | 0600, id) != 0) GTEST_SKIP() << "no nodes can be made here";
    EXPECT_EQ(kernelName(node), device.path().filename());
    return;
  }
  GTEST_SKIP() << "this machine has no block device";
}

TEST(KernelNames, AreThoseOfNodesThatHaveGone) {
  EXPECT_EQ(kernelName("/dev/none/loop3p1"), "loop3p1");
}

}  // namespace
}  // namespace quillmont
