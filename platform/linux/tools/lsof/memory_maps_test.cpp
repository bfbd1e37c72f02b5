#include "platform/linux/tools/lsof/memory_maps.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include "platform/posix/Descriptor.h"

namespace quillmont {
namespace {

TEST(MemoryMaps, ReadsDeviceInodeAndName) {
  const auto file = parseMapLine(
      "5646a06ac000-5646a06b1000 r-xp 00002000 07:1b 276                        /media/u/a b");
  EXPECT_EQ(file, (MapLine{makedev(7, 0x1b), 276, "/media/u/a b"}));
}

TEST(MemoryMaps, DeviceNumbersAreHexadecimalAndMayBeLong) {
  const auto file = parseMapLine("1000-2000 rw-s 00000000 103:1000a 4294967297 /x");
  EXPECT_EQ(file, (MapLine{makedev(0x103, 0x1000a), 4294967297, "/x"}));
}

TEST(MemoryMaps, DeviceWithMajorZeroIsAFile) {
  EXPECT_EQ(parseMapLine("1000-2000 r--p 00000000 00:27 276    /x (deleted)"),
            (MapLine{makedev(0, 0x27), 276, "/x (deleted)"}));
}

TEST(MemoryMaps, MemoryWithoutAFileIsNone) {
  EXPECT_FALSE(parseMapLine("7ffd0000-7ffe0000 rw-p 00000000 00:00 0                  [stack]"));
  EXPECT_FALSE(parseMapLine("7ffd0000-7ffe0000 rw-p 00000000 00:00 0 "));
}

TEST(MemoryMaps, FileMayHaveNoName) {
  EXPECT_EQ(parseMapLine("1000-2000 r--p 00000000 07:01 5"), (MapLine{makedev(7, 1), 5, ""}));
}

TEST(MemoryMaps, LinesThatAreNoneAreNone) {
  for (const char* line :
       {"", " ", "1000-2000", "1000-2000 r--p 0 zz:01 5 /x", "1000-2000 r--p 0 07:01 x /x",
        "1000-2000 r--p 0 0701 5 /x", "1000-2000 r--p 0 07:01 99999999999999999999999 /x",
        "1000-2000 r--p 0 fffffffffff:01 5 /x", "a b c d e f"}) {
    EXPECT_FALSE(parseMapLine(line)) << line;
  }
}

/// A mapped file, the table of this process, and the identity of the file's file system.
class MappedFilesTest : public ::testing::Test {
 protected:
  static constexpr std::size_t kSize = 4096;

  void SetUp() override {
    const Descriptor file(memfd_create("two\nlines\\", MFD_CLOEXEC));
    struct stat status = {};
    ASSERT_EQ(fstat(file.get(), &status), 0);
    ASSERT_EQ(ftruncate(file.get(), kSize), 0);
    memory_ = mmap(nullptr, kSize, PROT_READ, MAP_SHARED, file.get(), 0);
    ASSERT_NE(memory_, MAP_FAILED);
    volume_.devices = {status.st_dev};
    expected_ = {status.st_dev, status.st_ino, "/memfd:two\nlines\\ (deleted)"};
    ASSERT_TRUE(maps_);
  }
  void TearDown() override { munmap(memory_, kSize); }

  const Descriptor maps_{open("/proc/self/maps", O_RDONLY | O_CLOEXEC)};
  void* memory_ = nullptr;
  VolumeIdentity volume_;
  MappedFile expected_;
};

TEST_F(MappedFilesTest, TextTellsTheFilesOfTheVolume) {
  EXPECT_THAT(mappedFilesByText(maps_.get(), volume_), ::testing::Contains(expected_));
}

TEST_F(MappedFilesTest, QueryTellsTheSameAsTheText) {
  const auto files = mappedFilesByQuery(maps_.get(), volume_);
  if (!files) GTEST_SKIP() << "this kernel knows no query";
  EXPECT_THAT(*files, ::testing::Contains(expected_));
  EXPECT_EQ(*files, mappedFilesByText(maps_.get(), volume_));
}

TEST_F(MappedFilesTest, KernelWithoutTheQueryIsReadAsText) {
  const Descriptor noTable(open("/dev/null", O_RDONLY | O_CLOEXEC));
  EXPECT_FALSE(mappedFilesByQuery(noTable.get(), volume_));
  EXPECT_TRUE(mappedFiles(noTable.get(), volume_).empty());
  EXPECT_THAT(mappedFiles(maps_.get(), volume_), ::testing::Contains(expected_));
}

TEST_F(MappedFilesTest, FilesOfOthersAreNotTold) {
  volume_.devices = {makedev(7, 255)};
  EXPECT_TRUE(mappedFiles(maps_.get(), volume_).empty());
}

}  // namespace
}  // namespace quillmont
