#include "platform/linux/loop_devices.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>

#include "tests/support/Program.h"

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A made-up /sys/block.
class LoopDevices : public ::testing::Test {
 protected:
  void add(const std::string& name, const std::string& backingFile,
           const std::string& sequence = "7\n") {
    addEmpty(name);
    mkdir((path() + "/" + name + "/loop").c_str(), 0700);
    write(name + "/loop/backing_file", backingFile);
    if (!sequence.empty()) write(name + "/diskseq", sequence);
  }

  void addEmpty(const std::string& name) { mkdir((path() + "/" + name).c_str(), 0700); }

  void write(const std::string& name, const std::string& text) {
    std::ofstream(path() + "/" + name, std::ios::binary) << text;
  }

  std::string backingFileOf(const std::string& text) {
    add("loop0", text);
    const auto loops = attachedLoopDevices(path());
    return loops.size() == 1 ? loops.front().backingFile : "<" + std::to_string(loops.size()) + ">";
  }

  const std::string& path() const { return folder_.path(); }

 private:
  testing::TemporaryFolder folder_;
};

TEST_F(LoopDevices, ComeInTheOrderOfTheirNumbers) {
  add("loop10", "/c\n", "12\n");
  add("loop2", "/b\n", "11\n");
  add("loop0", "/a\n", "10\n");
  EXPECT_THAT(attachedLoopDevices(path()),
              ElementsAre(LoopDevice{"loop0", "/a", 10}, LoopDevice{"loop2", "/b", 11},
                          LoopDevice{"loop10", "/c", 12}));
}

TEST_F(LoopDevices, LeaveOutThoseWithoutAnImageAndOtherDisks) {
  addEmpty("loop0");
  add("sda", "/x\n");
  add("loopback", "/x\n");
  add("loop", "/x\n");
  add("loop1", "/image\n");
  EXPECT_THAT(attachedLoopDevices(path()), ElementsAre(LoopDevice{"loop1", "/image", 7}));
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
  write("kept.img (deleted)", "");
  EXPECT_EQ(backingFileOf(path() + "/kept.img (deleted)\n"), path() + "/kept.img (deleted)");
}

TEST_F(LoopDevices, DropOnlyOneMarkOfADeletedImageWithSuchAName) {
  EXPECT_EQ(backingFileOf("/x (deleted) (deleted)\n"), "/x (deleted)");
}

TEST_F(LoopDevices, HaveNoSequenceWhereTheKernelTellsNone) {
  add("loop0", "/a\n", "");
  add("loop1", "/b\n", "many\n");
  EXPECT_THAT(attachedLoopDevices(path()),
              ElementsAre(LoopDevice{"loop0", "/a", 0}, LoopDevice{"loop1", "/b", 0}));
}

TEST_F(LoopDevices, AreNoneWithoutTheFolder) {
  EXPECT_THAT(attachedLoopDevices(path() + "/none"), IsEmpty());
}

}  // namespace
}  // namespace quillmont
