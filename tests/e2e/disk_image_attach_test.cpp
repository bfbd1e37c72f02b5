// No image is ever on two devices, no volume is covered, and nothing stays attached for nobody.

#include <fcntl.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/tools/hdiutil/KernelImages.h"
#include "platform/posix/Descriptor.h"
#include "tests/e2e/DiskImageToolTest.h"
#include "tests/support/forked.h"

namespace quillmont {
namespace {

using namespace std::chrono_literals;
using testing::DiskImages;
using testing::eventually;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

using DiskImageAttach = testing::DiskImageToolTest;

/// A file moved so deep down that the kernel cannot tell its path; it comes back on destruction.
class Buried {
 public:
  explicit Buried(std::string path) : path_(std::move(path)) {
    const std::string name(200, 'd');
    root_ = path_ + ".deep";
    mkdir(root_.c_str(), 0700);
    deepest_ = Descriptor(open(root_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    for (int i = 0; i < 25; ++i) {
      mkdirat(deepest_.get(), name.c_str(), 0700);
      deepest_ = Descriptor(openat(deepest_.get(), name.c_str(), O_RDONLY | O_CLOEXEC));
    }
    EXPECT_EQ(renameat(AT_FDCWD, path_.c_str(), deepest_.get(), "image"), 0);
  }
  ~Buried() { EXPECT_EQ(renameat(deepest_.get(), "image", AT_FDCWD, path_.c_str()), 0); }
  Buried(const Buried&) = delete;
  Buried& operator=(const Buried&) = delete;

 private:
  std::string path_;
  std::string root_;
  Descriptor deepest_;
};

bool hasAutoclear(const std::string& loopName) {
  const auto flag = readFile("/sys/block/" + loopName + "/loop/autoclear");
  return flag && *flag == "1\n";
}

TEST_F(DiskImageAttach, AnotherNameOfAnImageWhosePathTheKernelCannotTellIsTheSameDevice) {
  const auto image = images_.makeExt4("a.img", "Quill Deep");
  const auto other = images_.path() + "/other.img";
  std::filesystem::create_hard_link(image, other);
  ASSERT_EQ(testing::run({"losetup", "--find", image}).status, 0);
  const auto loops = DiskImages::loopsOf(image);
  ASSERT_THAT(loops, SizeIs(1));
  {
    const Buried buried(image);
    ASSERT_THAT(DiskImages::loopsOf(image), IsEmpty());
    for (int round = 0; round < 2; ++round) {
      const auto outcome = images_.attach(other);
      EXPECT_EQ(outcome.status, 0) << outcome.standardError;
      EXPECT_EQ(outcome.standardOutput, "/dev/" + loops[0] + "\t/Volumes/Quill Deep\n");
    }
    EXPECT_THAT(DiskImages::loopsOf(other), IsEmpty());
  }
  EXPECT_EQ(DiskImages::loopsOf(image), loops);
  detach("/Volumes/Quill Deep");
  expectGone(image);
}

TEST_F(DiskImageAttach, AFileInThePlaceOfADeletedImageIsAnotherImage) {
  const auto image = images_.makeExt4("a.img", "Quill Old");
  attach(image);
  std::filesystem::remove(image);
  images_.makeExt4("a.img", "Quill New");
  const auto outcome = images_.attach(image);
  EXPECT_EQ(outcome.status, 0) << outcome.standardError;
  EXPECT_THAT(outcome.standardOutput, HasSubstr("\t/Volumes/Quill New\n"));
  EXPECT_THAT(DiskImages::loopsOf(image), SizeIs(2));
}

TEST_F(DiskImageAttach, AKillBeforeTheMountLeavesNothingAttached) {
  const auto image = images_.makeExt4("a.img", "Quill Kill");
  const int status = testing::forked([&image] {
    const auto opened = ImageFile::open(image);
    ASSERT_TRUE(opened);
    KernelImages control;
    ASSERT_TRUE(control.setUp(*opened));
    ASSERT_THAT(DiskImages::loopsOf(image), SizeIs(1));
    raise(SIGKILL);
  });
  EXPECT_EQ(status, 128 + SIGKILL);
  EXPECT_TRUE(eventually([&] { return DiskImages::loopsOf(image).empty(); }, 5s));
}

TEST_F(DiskImageAttach, ADeviceThatWasOnlySetUpGoesWithItsLastUnmountToo) {
  const auto image = images_.makeExt4("a.img", "Quill Reused");
  ASSERT_EQ(testing::run({"losetup", "--find", image}).status, 0);
  attach(image);
  const auto loops = DiskImages::loopsOf(image);
  ASSERT_THAT(loops, SizeIs(1));
  EXPECT_TRUE(hasAutoclear(loops[0]));
  ASSERT_EQ(umount2(DiskImages::realPlace("Quill Reused").c_str(), 0), 0);
  EXPECT_TRUE(eventually([&] { return DiskImages::loopsOf(image).empty(); }, 5s));
  std::filesystem::remove(DiskImages::realPlace("Quill Reused"));
}

TEST_F(DiskImageAttach, AVolumeThatCameToTheOldPlaceMeanwhileIsNotCovered) {
  const auto image = images_.makeExt4("a.img", "Quill Taken");
  attach(image);
  const auto place = DiskImages::realPlace("Quill Taken");
  const Descriptor held(open(place.c_str(), O_RDONLY | O_CLOEXEC));
  ASSERT_TRUE(held);
  detach("/Volumes/Quill Taken");
  std::filesystem::create_directories(place);
  ASSERT_EQ(mount("none", place.c_str(), "tmpfs", 0, nullptr), 0);
  const auto outcome = images_.attach(image);
  while (umount2(place.c_str(), MNT_DETACH) == 0) continue;  // one, or two where it was covered
  rmdir(place.c_str());
  EXPECT_EQ(outcome.status, 0) << outcome.standardError;
  const auto loop = DiskImages::loopsOf(image).at(0);
  EXPECT_EQ(outcome.standardOutput, "/dev/" + loop + "\t/Volumes/Quill Taken (" + loop + ")\n");
}

}  // namespace
}  // namespace quillmont
