#include "platform/linux/ghosts.h"

#include <dirent.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "platform/linux/user_folders.h"
#include "tests/support/SysBlock.h"

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Ghosts : public ::testing::Test {
 protected:
  void SetUp() override {
    if (const char* before = getenv("XDG_RUNTIME_DIR")) before_ = before;
    chmod(runtime_.path().c_str(), 0700);
    setenv("XDG_RUNTIME_DIR", runtime_.path().c_str(), 1);
    block_.attach("loop3", ghost_.imagePath + "\n", "41\n");
  }

  void TearDown() override {
    if (before_.empty()) {
      unsetenv("XDG_RUNTIME_DIR");
    } else {
      setenv("XDG_RUNTIME_DIR", before_.c_str(), 1);
    }
  }

  std::vector<Ghost> living() { return livingGhosts(block_.path()); }

  std::string folder() { return *runtimeFolder() + "/ghosts"; }

  std::vector<std::string> records() {
    std::vector<std::string> paths;
    if (!std::filesystem::exists(folder())) return paths;
    for (const auto& entry : std::filesystem::directory_iterator(folder())) {
      paths.push_back(entry.path());
    }
    return paths;
  }

  std::string onlyRecord() {
    const auto all = records();
    EXPECT_EQ(all.size(), 1u);
    return all.empty() ? std::string() : all.front();
  }

  void changeRecord(const std::string& from, const std::string& to) {
    const auto path = onlyRecord();
    std::ifstream in(path, std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(in)), {});
    const auto at = bytes.find(from);
    ASSERT_NE(at, std::string::npos);
    bytes.replace(at, from.size(), to);
    std::ofstream(path, std::ios::binary) << bytes;
  }

  const Ghost ghost_{
      "loop3", 41,  "/home/ann/a = b\n\xff.img", "/dev/loop3p1", "/media/ann/a\nb", 512,
      0x701,   0x2b};
  testing::SysBlock block_;

 private:
  testing::TemporaryFolder runtime_;
  std::string before_;
};

TEST_F(Ghosts, LiveWhileTheirLoopDeviceIsAttached) {
  ASSERT_TRUE(rememberGhost(ghost_));
  EXPECT_THAT(living(), ElementsAre(ghost_));
}

TEST_F(Ghosts, VanishWithTheirRecordWhenTheLoopDeviceIsReleased) {
  ASSERT_TRUE(rememberGhost(ghost_));
  block_.release("loop3");
  EXPECT_THAT(living(), IsEmpty());
  EXPECT_THAT(records(), IsEmpty());
}

TEST_F(Ghosts, VanishWhenTheLoopDeviceWasAttachedAnew) {
  ASSERT_TRUE(rememberGhost(ghost_));
  block_.attach("loop3", ghost_.imagePath + "\n", "42\n");
  EXPECT_THAT(living(), IsEmpty());
  EXPECT_THAT(records(), IsEmpty());
}

TEST_F(Ghosts, StayWithAnImageThatWasRenamed) {
  ASSERT_TRUE(rememberGhost(ghost_));
  block_.attach("loop3", "/home/ann/new name.img\n", "41\n");
  EXPECT_THAT(living(), ElementsAre(ghost_));
}

TEST_F(Ghosts, WithoutSequencesAreKnownByTheirImage) {
  Ghost ghost = ghost_;
  ghost.loopSequence = 0;
  ASSERT_TRUE(rememberGhost(ghost));
  block_.attach("loop3", ghost_.imagePath + "\n", "");
  EXPECT_THAT(living(), ElementsAre(ghost));
  block_.attach("loop3", "/other.img\n", "");
  EXPECT_THAT(living(), IsEmpty());
  EXPECT_EQ(records().size(), 1u) << "the image may have been renamed";
}

TEST_F(Ghosts, OfAnotherBootAreRemoved) {
  ASSERT_TRUE(rememberGhost(ghost_));
  changeRecord("boot=", "boot=0");
  EXPECT_THAT(living(), IsEmpty());
  EXPECT_THAT(records(), IsEmpty());
}

TEST_F(Ghosts, SeveralOfOneDeviceLiveSideBySide) {
  Ghost second = ghost_;
  second.deviceNode = "/dev/loop3p2";
  second.mountPoint = "/media/ann/second";
  second.mountId = 513;
  ASSERT_TRUE(rememberGhost(ghost_));
  ASSERT_TRUE(rememberGhost(second));
  EXPECT_THAT(living(), ElementsAre(ghost_, second));
}

TEST_F(Ghosts, AreForgottenOneByOne) {
  Ghost second = ghost_;
  second.mountId = 513;
  ASSERT_TRUE(rememberGhost(ghost_));
  ASSERT_TRUE(rememberGhost(second));
  forgetGhost(ghost_);
  EXPECT_THAT(living(), ElementsAre(second));
  forgetGhost(ghost_);
}

TEST_F(Ghosts, RecordsArePrivate) {
  ASSERT_TRUE(rememberGhost(ghost_));
  struct stat status = {};
  ASSERT_EQ(stat(onlyRecord().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0600u);
  ASSERT_EQ(stat(folder().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0700u);
}

TEST_F(Ghosts, DamagedRecordsAreRemoved) {
  for (const std::string damage : {"", "boot", "sequence=41x", "no entry at all"}) {
    ASSERT_TRUE(rememberGhost(ghost_));
    if (damage.starts_with("sequence")) {
      changeRecord("sequence=41", damage);
    } else {
      std::ofstream(onlyRecord(), std::ios::binary) << damage;
    }
    EXPECT_THAT(living(), IsEmpty()) << damage;
    EXPECT_THAT(records(), IsEmpty()) << damage;
  }
}

TEST_F(Ghosts, ARecordCutShortAnywhereIsNoGhost) {
  ASSERT_TRUE(rememberGhost(ghost_));
  const auto length = std::filesystem::file_size(onlyRecord());
  for (std::size_t kept = 0; kept < length; ++kept) {
    ASSERT_TRUE(rememberGhost(ghost_));
    std::filesystem::resize_file(onlyRecord(), kept);
    EXPECT_THAT(living(), IsEmpty()) << kept;
  }
}

TEST_F(Ghosts, ARecordOfAnotherNameThanItsGhostsIsNone) {
  for (const char* device : {"loop4", "./loop3", "//loop3", "../block/loop3"}) {
    ASSERT_TRUE(rememberGhost(ghost_));
    block_.attach("loop4", ghost_.imagePath + "\n", "41\n");
    changeRecord("loop=loop3", std::string("loop=") + device);
    EXPECT_THAT(living(), IsEmpty()) << device;
    EXPECT_THAT(records(), IsEmpty()) << device;
  }
}

TEST_F(Ghosts, APlantedLinkIsRemovedAndNotFollowed) {
  ASSERT_TRUE(rememberGhost(ghost_));
  const auto path = onlyRecord();
  testing::TemporaryFolder elsewhere;
  const auto target = elsewhere.path() + "/target";
  std::filesystem::rename(path, target);
  ASSERT_EQ(symlink(target.c_str(), path.c_str()), 0);
  EXPECT_THAT(living(), IsEmpty());
  EXPECT_THAT(records(), IsEmpty());
  EXPECT_TRUE(std::filesystem::exists(target));
}

TEST_F(Ghosts, APlantedPipeHoldsNobodyUp) {
  ASSERT_TRUE(rememberGhost(ghost_));
  const auto path = onlyRecord();
  unlink(path.c_str());
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  EXPECT_THAT(living(), IsEmpty());
  EXPECT_THAT(records(), IsEmpty());
}

TEST_F(Ghosts, OtherFilesInTheFolderAreLeftAlone) {
  ASSERT_TRUE(rememberGhost(ghost_));
  std::ofstream(folder() + "/loop3-41-512.new") << "half";
  block_.release("loop3");
  EXPECT_THAT(living(), IsEmpty());
  EXPECT_THAT(records(), ElementsAre(folder() + "/loop3-41-512.new"));
}

TEST_F(Ghosts, KeepThatTheyWereUnmountedCleanly) {
  Ghost ghost = ghost_;
  ghost.unmounted = true;
  ASSERT_TRUE(rememberGhost(ghost));
  EXPECT_THAT(living(), ElementsAre(ghost));
}

TEST_F(Ghosts, SurviveAListOfDevicesThatCannotBeRead) {
  ASSERT_TRUE(rememberGhost(ghost_));
  EXPECT_THAT(livingGhosts(block_.path() + "/none"), IsEmpty());
  EXPECT_THAT(living(), ElementsAre(ghost_));
}

TEST_F(Ghosts, LiveWhereTheImagesPathCannotBeRead) {
  ASSERT_TRUE(rememberGhost(ghost_));
  block_.attach("loop3", "", "41\n");
  EXPECT_THAT(living(), ElementsAre(ghost_));
}

TEST_F(Ghosts, SurviveASequenceThatCannotBeRead) {
  ASSERT_TRUE(rememberGhost(ghost_));
  block_.attach("loop3", "", "");
  EXPECT_THAT(living(), IsEmpty());
  block_.attach("loop3", ghost_.imagePath + "\n", "41\n");
  EXPECT_THAT(living(), ElementsAre(ghost_));
}

TEST_F(Ghosts, ARecordThatCannotBeOpenedIsLeftAlone) {
  ASSERT_TRUE(rememberGhost(ghost_));
  const auto path = onlyRecord();
  unlink(path.c_str());
  ASSERT_EQ(mknod(path.c_str(), S_IFSOCK | 0600, 0), 0);
  EXPECT_THAT(living(), IsEmpty());
  EXPECT_THAT(records(), ElementsAre(path));
}

}  // namespace
}  // namespace quillmont
