#include "platform/linux/loop_devices.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/SysBlock.h"

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class LoopDevices : public ::testing::Test {
 protected:
  void add(const std::string& name, const std::string& backingFile,
           const std::string& sequence = "7\n") {
    block_.attach(name, backingFile, sequence);
  }

  LoopDevice only(const std::string& text) {
    add("loop0", text);
    const auto loops = attachedLoopDevices(path());
    EXPECT_EQ(loops.size(), 1u);
    return loops.empty() ? LoopDevice() : loops.front();
  }

  std::string backingFileOf(const std::string& text) { return only(text).backingFile; }

  const std::string& path() const { return block_.path(); }

  testing::SysBlock block_;
};

TEST_F(LoopDevices, ComeInTheOrderOfTheirNumbers) {
  add("loop10", "/c\n", "12\n");
  add("loop2", "/b\n", "11\n");
  add("loop0", "/a\n", "10\n");
  EXPECT_THAT(attachedLoopDevices(path()), ElementsAre(LoopDevice{"loop0", "/a", 10, false},
                                                       LoopDevice{"loop2", "/b", 11, false},
                                                       LoopDevice{"loop10", "/c", 12, false}));
}

TEST_F(LoopDevices, LeaveOutThoseWithoutAnImageAndOtherDisks) {
  block_.release("loop0");
  add("sda", "/x\n");
  add("loopback", "/x\n");
  add("loop", "/x\n");
  add("loop1", "/image\n");
  EXPECT_THAT(attachedLoopDevices(path()), ElementsAre(LoopDevice{"loop1", "/image", 7, false}));
}

TEST_F(LoopDevices, LeaveOutABackingFileThatIsNoPath) {
  add("loop0", "");
  add("loop1", "\n");
  add("loop2", "relative\n");
  EXPECT_THAT(attachedLoopDevices(path()), IsEmpty());
}

TEST_F(LoopDevices, KeepNewlinesInTheImagesName) {
  EXPECT_EQ(backingFileOf("/a\nb\n\n"), "/a\nb\n");
}

TEST_F(LoopDevices, DropTheMarkOfADeletedImage) {
  EXPECT_EQ(backingFileOf(path() + "/gone.img (deleted)\n"), path() + "/gone.img");
}

TEST_F(LoopDevices, KeepANameThatReallyEndsInTheMark) {
  block_.write("kept.img (deleted)", "");
  EXPECT_EQ(backingFileOf(path() + "/kept.img (deleted)\n"), path() + "/kept.img (deleted)");
}

TEST_F(LoopDevices, TellADeletedImageFromOneThatIsThere) {
  block_.write("kept.img", "");
  block_.write("kept.img (deleted)", "");
  EXPECT_FALSE(only(path() + "/kept.img\n").deleted);
  EXPECT_FALSE(only(path() + "/kept.img (deleted)\n").deleted);
  EXPECT_TRUE(only(path() + "/gone.img (deleted)\n").deleted);
}

TEST_F(LoopDevices, AreDeletedAlsoWhereANewFileHasTheirName) {
  block_.write("new.img", "");
  EXPECT_TRUE(only(path() + "/new.img (deleted)\n").deleted);
}

TEST_F(LoopDevices, DropOnlyOneMarkOfADeletedImageWithSuchAName) {
  EXPECT_EQ(backingFileOf("/x (deleted) (deleted)\n"), "/x (deleted)");
}

TEST_F(LoopDevices, HaveNoSequenceWhereTheKernelTellsNone) {
  add("loop0", "/a\n", "");
  add("loop1", "/b\n", "many\n");
  EXPECT_THAT(attachedLoopDevices(path()), ElementsAre(LoopDevice{"loop0", "/a", 0, false},
                                                       LoopDevice{"loop1", "/b", 0, false}));
}

TEST_F(LoopDevices, AreNoneWithoutTheFolder) {
  EXPECT_THAT(attachedLoopDevices(path() + "/none"), IsEmpty());
}

TEST_F(LoopDevices, TellTheStateOfOne) {
  add("loop3", "/a\n", "10\n");
  const auto state = loopState("loop3", path());
  EXPECT_EQ(state.kind, LoopState::Kind::attached);
  EXPECT_EQ(state.sequence, 10u);
  EXPECT_EQ(state.backingFile, "/a");
}

TEST_F(LoopDevices, AreAttachedEvenIfNothingElseCanBeRead) {
  add("loop3", "", "");
  const auto state = loopState("loop3", path());
  EXPECT_EQ(state.kind, LoopState::Kind::attached);
  EXPECT_EQ(state.sequence, std::nullopt);
  EXPECT_EQ(state.backingFile, std::nullopt);
}

TEST_F(LoopDevices, AreReleasedOnlyWhereTheListIsThere) {
  block_.release("loop3");
  EXPECT_EQ(loopState("loop3", path()).kind, LoopState::Kind::released);
  EXPECT_EQ(loopState("loop4", path()).kind, LoopState::Kind::released);
  EXPECT_EQ(loopState("loop3", path() + "/none").kind, LoopState::Kind::unknown);
}

}  // namespace
}  // namespace quillmont
