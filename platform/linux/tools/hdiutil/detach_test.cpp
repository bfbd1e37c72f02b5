#include "platform/linux/tools/hdiutil/detach.h"

#include <gtest/gtest.h>
#include <sys/mount.h>

#include <cstdlib>
#include <filesystem>

#include "platform/linux/user_folders.h"
#include "tests/support/Program.h"
#include "tests/support/forked.h"

namespace quillmont {
namespace {

/// Finds every volume in use, and reports failure of a lazy unmount, which it may have done.
class FailingControl : public ImageControl {
 public:
  explicit FailingControl(bool unmountsAllTheSame) : unmounts_(unmountsAllTheSame) {}

  Result<std::string> deviceOf(const ImageFile&) override { return std::string(); }
  Result<std::string> setUp(const ImageFile&) override { return Error{"unused"}; }
  Result<std::string> mount(const std::string&, const ImageVolume&, const std::string&,
                            const std::vector<std::string>&) override {
    return Error{"unused"};
  }
  void releaseWithLastUnmount(const std::string&) override {}
  void release(const LoopDevice&) override { released = true; }
  bool isAttached(const LoopDevice&) const override { return attached; }

  UnmountOutcome unmount(const VolumeMount& volume, Unmounting manner) override {
    if (manner == Unmounting::whenUnused) return {false, true, "in use"};
    unmountedLazily = true;
    if (unmounts_) umount2(volume.mount.mountPoint.c_str(), MNT_DETACH);
    return {false, false, "no answer"};
  }

  bool attached = true;  ///< as it was when it was looked at
  bool unmountedLazily = false;
  bool released = false;

 private:
  const bool unmounts_;
};

/// A file system in a mount table of the test's own, taken for the volume of an image.
class Detaching : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!testing::canMount()) GTEST_SKIP() << "this user may not mount anything";
  }

  /// In a process of its own: detaches through `control` and answers whether that succeeded.
  bool detaches(FailingControl& control) {
    EXPECT_TRUE(testing::enterOwnMountTable());
    setenv("XDG_RUNTIME_DIR", runtime_.path().c_str(), 1);
    EXPECT_EQ(mount("none", place_.path().c_str(), "tmpfs", 0, nullptr), 0);
    const auto mounts = readMountTable();
    std::vector<VolumeMount> volumes;
    for (const auto& each : *mounts) {
      if (each.mountPoint == place_.path()) volumes.push_back({loop_.name, "/dev/none", each});
    }
    const ImageTable table({loop_}, {}, *mounts, volumes, {}, "ann");
    return static_cast<bool>(detachImage(table, place_.path(), true, control));
  }

  static bool isRecorded() {
    const auto folder = *runtimeFolder() + "/ghosts";
    return std::filesystem::exists(folder) && !std::filesystem::is_empty(folder);
  }

 private:
  const LoopDevice loop_{"loop-none", "/a.img", 1, false};
  testing::TemporaryFolder place_;
  testing::TemporaryFolder runtime_;
};

TEST_F(Detaching, AVolumeThatWentDespiteAReportedFailureKeepsItsRecord) {
  EXPECT_EQ(testing::forked([this] {
              FailingControl control(true);
              EXPECT_TRUE(detaches(control));
              EXPECT_TRUE(control.released);
              EXPECT_TRUE(isRecorded());
            }),
            0);
}

TEST_F(Detaching, AVolumeThatIsStillMountedHasNoRecord) {
  EXPECT_EQ(testing::forked([this] {
              FailingControl control(false);
              EXPECT_FALSE(detaches(control));
              EXPECT_FALSE(control.released);
              EXPECT_FALSE(isRecorded());
            }),
            0);
}

TEST_F(Detaching, AnotherImageThatCameWhileTheFirstWasWrittenOutStays) {
  EXPECT_EQ(testing::forked([this] {
              FailingControl control(true);
              control.attached = false;
              EXPECT_FALSE(detaches(control));
              EXPECT_FALSE(control.unmountedLazily);
              EXPECT_FALSE(isRecorded());
            }),
            0);
}

}  // namespace
}  // namespace quillmont
