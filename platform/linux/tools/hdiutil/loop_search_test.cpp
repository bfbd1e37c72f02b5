#include "platform/linux/tools/hdiutil/loop_search.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "tests/support/Program.h"

namespace quillmont {
namespace {

using ::testing::HasSubstr;

/// The image "a.img", and loop devices that name other files.
class LoopSearch : public ::testing::Test {
 protected:
  void SetUp() override {
    std::ofstream(at("a.img")) << "image";
    std::ofstream(at("b.img")) << "other";
    auto opened = ImageFile::open(at("a.img"));
    ASSERT_TRUE(opened) << opened.errorText();
    image_ = std::move(*opened);
  }

  std::string at(const std::string& name) const { return folder_.path() + "/" + name; }

  SameFile carries(const std::string& backingFile, bool deleted = false) const {
    return carriesFile({"loop3", backingFile, 1, deleted}, image_);
  }

  testing::TemporaryFolder folder_;
  ImageFile image_;
};

TEST_F(LoopSearch, KnowsTheImageUnderEveryName) {
  std::filesystem::create_hard_link(at("a.img"), at("link.img"));
  EXPECT_EQ(carries(at("a.img")), SameFile::yes);
  EXPECT_EQ(carries(at("link.img")), SameFile::yes);
}

TEST_F(LoopSearch, AnotherFileOfTheSameNameIsAnotherImage) {
  std::filesystem::create_directory(at("folder"));
  std::ofstream(at("folder/a.img")) << "other";
  EXPECT_EQ(carries(at("folder/a.img")), SameFile::no);
  EXPECT_EQ(carries(at("b.img")), SameFile::no);
}

TEST_F(LoopSearch, CannotTellOfAFileOutOfReachWithTheImagesName) {
  EXPECT_EQ(carries("/no such volume/a.img"), SameFile::unknown);
  EXPECT_EQ(carries("/a.img"), SameFile::unknown);  // its volume was pulled away
  EXPECT_EQ(carries("/no such volume/other a.img"), SameFile::no);
}

TEST_F(LoopSearch, AnImageInThePlaceOfADeletedOneIsNotTakenForIt) {
  EXPECT_EQ(carries(at("a.img"), true), SameFile::unknown);
  EXPECT_EQ(carries(at("b.img"), true), SameFile::no);
}

TEST_F(LoopSearch, FindsTheDeviceAndRefusesWhereItCannotTell) {
  const LoopDevice other{"loop1", at("b.img"), 1};
  const LoopDevice doubtful{"loop2", "/a.img", 2};
  const LoopDevice same{"loop3", at("a.img"), 3};
  EXPECT_EQ(findLoopOf(image_, {other, doubtful, same}).value(), "loop3");
  EXPECT_EQ(findLoopOf(image_, {other}).value(), "");
  const auto refused = findLoopOf(image_, {doubtful, other});
  ASSERT_FALSE(refused);
  EXPECT_THAT(refused.errorText(), HasSubstr("/dev/loop2 may carry this image already"));
}

}  // namespace
}  // namespace quillmont
