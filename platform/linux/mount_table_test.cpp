#include "platform/linux/mount_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

Mount onlyMount(const std::string& line) {
  const auto mounts = parseMountTable(line);
  EXPECT_EQ(mounts.size(), 1u) << line;
  return mounts.empty() ? Mount{} : mounts.front();
}

TEST(MountTable, ReadsEveryFieldOfALine) {
  const auto mount = onlyMount(
      "36 35 98:3 /part /mnt/x rw,noatime master:1 - ext3 /dev/loop3p1 rw,errors=continue\n");
  EXPECT_EQ(mount, (Mount{36, 35, 98, 3, "/part", "/mnt/x", "ext3", "/dev/loop3p1"}));
}

TEST(MountTable, DecodesOctalEscapesInMountPoints) {
  EXPECT_EQ(
      onlyMount(R"(1 2 7:0 / /a\040b\011c\012d\134e\043f rw - ext4 /dev/loop0 rw)").mountPoint,
      "/a b\tc\nd\\e#f");
}

TEST(MountTable, DecodesEscapesInRootTypeAndSource) {
  const auto mount = onlyMount(R"(1 2 0:9 /r\040s /m rw - fuse.a\043b //host/x\040y rw)");
  EXPECT_EQ(mount.root, "/r s");
  EXPECT_EQ(mount.type, "fuse.a#b");
  EXPECT_EQ(mount.source, "//host/x y");
}

TEST(MountTable, DecodesABackslashOnceOnly) {
  EXPECT_EQ(onlyMount(R"(1 2 7:0 / /a\134040 rw - ext4 /dev/loop0 rw)").mountPoint, "/a\\040");
}

TEST(MountTable, KeepsABackslashThatStartsNoEscape) {
  EXPECT_EQ(onlyMount(R"(1 2 7:0 / /a\09\400\x41\04 rw - ext4 /dev/loop0 rw)").mountPoint,
            R"(/a\09\400\x41\04)");
}

TEST(MountTable, KeepsBytesAboveAsciiAsTheyAre) {
  EXPECT_EQ(onlyMount("1 2 7:0 / /media/u/\xe7\xbf\xbc\xff rw - ext4 /dev/loop0 rw").mountPoint,
            "/media/u/\xe7\xbf\xbc\xff");
}

TEST(MountTable, ReadsAMountWithoutSource) {
  const auto mount = onlyMount("1 2 0:30 / /tmp rw - tmpfs  rw,size=1k");
  EXPECT_EQ(mount.source, "");
  EXPECT_EQ(mount.type, "tmpfs");
}

TEST(MountTable, PassesOverAnyNumberOfOptionalFields) {
  EXPECT_EQ(onlyMount("1 2 7:0 / /a rw - ext4 /dev/loop0 rw").source, "/dev/loop0");
  EXPECT_EQ(onlyMount("1 2 7:0 / /a rw shared:1 master:2 propagate_from:3 unbindable - ext4 "
                      "/dev/loop1 rw")
                .source,
            "/dev/loop1");
}

TEST(MountTable, AMountPointNamedDashIsNoSeparator) {
  const auto mount = onlyMount("1 2 7:0 - /- rw - ext4 - rw");
  EXPECT_EQ(mount.mountPoint, "/-");
  EXPECT_EQ(mount.source, "-");
}

TEST(MountTable, PassesOverTruncatedLinesAndKeepsTheOthers) {
  const std::string whole = "1 2 7:0 / /a rw shared:1 - ext4 /dev/loop0 rw";
  for (std::size_t length = 0; length + 3 < whole.size(); ++length) {
    const auto mounts = parseMountTable(whole.substr(0, length) + "\n" + whole + "\n");
    EXPECT_EQ(mounts.size(), 1u) << length;
  }
}

TEST(MountTable, PassesOverGarbage) {
  EXPECT_THAT(parseMountTable(""), IsEmpty());
  EXPECT_THAT(parseMountTable("\n\n   \n - - - -\n"), IsEmpty());
  EXPECT_THAT(parseMountTable(std::string(300, '\0')), IsEmpty());
  EXPECT_THAT(parseMountTable("x 2 7:0 / /a rw - ext4 s rw"), IsEmpty());
  EXPECT_THAT(parseMountTable("1 2 70 / /a rw - ext4 s rw"), IsEmpty());
  EXPECT_THAT(parseMountTable("1 2 7:0:1 / /a rw - ext4 s rw"), IsEmpty());
  EXPECT_THAT(parseMountTable("1 99999999999999 7:0 / /a rw - ext4 s rw"), IsEmpty());
  EXPECT_THAT(parseMountTable("1 2 7:0 / relative rw - ext4 s rw"), IsEmpty());
}

TEST(MountTable, TheSystemsOwnTableHasARoot) {
  const auto mounts = readMountTable();
  ASSERT_TRUE(mounts) << mounts.errorText();
  EXPECT_THAT(*mounts, ::testing::Contains(::testing::Field(&Mount::mountPoint, "/")));
}

}  // namespace
}  // namespace quillmont
