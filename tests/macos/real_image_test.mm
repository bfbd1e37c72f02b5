// A Mac's own disk images: that its real tool lists one as the program expects, and detaches it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <optional>

#include "monitor/attached_images.h"
#include "platform/ToolPaths.h"
#include "platform/macos/FoundationPropertyLists.h"
#include "tests/support/Program.h"

namespace quillmont::testing {
namespace {

class RealImage : public ::testing::Test {
 protected:
  void SetUp() override {
    if (access(tool_.c_str(), X_OK) != 0) GTEST_SKIP() << "there is no " << tool_ << " here";
    const auto made =
        hdiutil({"create", "-size", "10m", "-fs", "HFS+", "-volname", volume_, image_});
    ASSERT_EQ(made.status, 0) << made.standardError;
    const auto attached = hdiutil({"attach", image_, "-nobrowse"});
    ASSERT_EQ(attached.status, 0) << attached.standardError;
  }

  void TearDown() override {
    if (std::filesystem::exists(mountPoint_)) hdiutil({"detach", mountPoint_, "-force"});
  }

  Outcome hdiutil(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), tool_);
    return run(arguments, {}, std::chrono::seconds(120));
  }

  std::optional<ScanEntry> listed() {
    const auto list = FoundationPropertyLists().parse(hdiutil({"info", "-plist"}).standardOutput);
    if (!list) return std::nullopt;
    const auto images = readAttachedImages(*list);
    const auto found =
        std::ranges::find(images, mountPoint_, [](const auto& image) { return image.mountPoint; });
    return found == images.end() ? std::nullopt : std::optional(*found);
  }

  const std::string tool_ = ToolPaths().diskImageTool;
  TemporaryFolder folder_;
  const std::string volume_ = "Quillmont Test " + std::to_string(getpid());
  const std::string image_ = folder_.path() + "/test.dmg", mountPoint_ = "/Volumes/" + volume_;
};

TEST_F(RealImage, IsListedWithItsFileItsVolumeAndItsDevice) {
  const auto image = listed();
  ASSERT_TRUE(image);
  EXPECT_EQ(std::filesystem::canonical(image->imagePath), std::filesystem::canonical(image_));
  EXPECT_THAT(image->devEntry, ::testing::StartsWith("/dev/disk"));
}

TEST_F(RealImage, IsGoneOnceItIsDetached) {
  const auto outcome = hdiutil({"detach", mountPoint_, "-force"});
  EXPECT_EQ(outcome.status, 0) << outcome.standardError;
  EXPECT_FALSE(listed());
}

}  // namespace
}  // namespace quillmont::testing
