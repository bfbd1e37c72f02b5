#include "platform/linux/tools/hdiutil/ImageFile.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <thread>

#include "tests/support/Program.h"

namespace quillmont {
namespace {

using namespace std::chrono_literals;

class AttachmentTurns : public ::testing::Test {
 protected:
  void SetUp() override {
    std::ofstream(path()) << "image";
    auto opened = ImageFile::open(path());
    ASSERT_TRUE(opened) << opened.errorText();
    image_ = std::move(*opened);
  }

  std::string path() const { return folder_.path() + "/a.img"; }

  testing::TemporaryFolder folder_;
  ImageFile image_;
};

TEST_F(AttachmentTurns, WhoseTurnDoesNotComeIsTurnedAway) {
  const auto first = AttachmentTurn::take(image_);
  ASSERT_TRUE(first) << first.errorText();
  const auto second = AttachmentTurn::take(image_, 50ms);
  ASSERT_FALSE(second);
  EXPECT_EQ(second.errorText(), "another attach of this image is under way");
}

TEST_F(AttachmentTurns, TheNextOneComesWhenTheFirstIsDone) {
  std::optional<Result<AttachmentTurn>> first(AttachmentTurn::take(image_));
  ASSERT_TRUE(*first);
  std::thread end([&first] {
    std::this_thread::sleep_for(20ms);
    first.reset();
  });
  EXPECT_TRUE(AttachmentTurn::take(image_, 20s));
  end.join();
}

TEST_F(AttachmentTurns, GoByTheFileNotByItsName) {
  const auto first = AttachmentTurn::take(image_);
  ASSERT_TRUE(first);
  std::filesystem::rename(path(), path() + ".old");
  std::ofstream(path()) << "another image";
  EXPECT_FALSE(AttachmentTurn::take(image_, 50ms));
}

}  // namespace
}  // namespace quillmont
