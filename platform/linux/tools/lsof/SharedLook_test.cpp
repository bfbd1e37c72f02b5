#include "platform/linux/tools/lsof/SharedLook.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "platform/linux/question_series.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/files.h"
#include "tests/support/Program.h"

namespace quillmont {
namespace {

using std::chrono::nanoseconds;
using ::testing::Optional;
using testing::TemporaryFolder;
using namespace std::chrono_literals;

constexpr nanoseconds kBegan = 100s;

class SharedLookTest : public ::testing::Test {
 protected:
  /// The answers about two volumes, the second of which nobody uses.
  void keepTwo() const {
    look_.keep({{"/Volumes/one", "p1\ncfinder\n"}, {"/Volumes/two", ""}}, kBegan);
  }

  std::optional<std::string> take(const std::string& path, nanoseconds now = kBegan) const {
    return look_.take(path, now);
  }

  /// Whether there is an answer to be taken about either volume.
  bool answersAnything() const { return take("/Volumes/one") || take("/Volumes/two"); }

  const TemporaryFolder folder_;
  const std::string file_ = folder_.path() + "/look";
  const SharedLook look_{file_, "asker"};
};

TEST_F(SharedLookTest, EachVolumeIsAnsweredOnce) {
  keepTwo();
  EXPECT_THAT(take("/Volumes/two"), Optional(std::string()));
  EXPECT_THAT(take("/Volumes/one"), Optional(std::string("p1\ncfinder\n")));
  EXPECT_FALSE(answersAnything());
}

TEST_F(SharedLookTest, VolumeThatTheLookDidNotKnowHasNoAnswer) {
  keepTwo();
  EXPECT_FALSE(take("/Volumes/three"));
  EXPECT_FALSE(take("/Volumes/on"));
  EXPECT_FALSE(take("asker"));
  EXPECT_TRUE(take("/Volumes/one"));
}

TEST_F(SharedLookTest, AnswersAreGivenWhileTheLookIsFresh) {
  keepTwo();
  EXPECT_FALSE(take("/Volumes/one", kBegan + kLookIsFresh));
  EXPECT_FALSE(take("/Volumes/one", kBegan - 1ns)) << "a look that has not begun yet";
  EXPECT_TRUE(take("/Volumes/one", kBegan + kLookIsFresh - 1ns));
}

TEST_F(SharedLookTest, SomebodyElseGetsNoAnswer) {
  keepTwo();
  for (const char* const other : {"", "aske", "asker ", "other"}) {
    EXPECT_FALSE(SharedLook(file_, other).take("/Volumes/one", kBegan)) << other;
  }
  EXPECT_TRUE(take("/Volumes/one"));
}

TEST_F(SharedLookTest, NewLookReplacesTheAnswersOfTheOldOne) {
  keepTwo();
  look_.keep({{"/Volumes/one", "p2\n"}}, kBegan + 1s);
  EXPECT_FALSE(take("/Volumes/two", kBegan + 1s));
  EXPECT_THAT(take("/Volumes/one", kBegan + 1s), Optional(std::string("p2\n")));
}

TEST_F(SharedLookTest, DroppedAnswersAreGone) {
  keepTwo();
  look_.drop();
  EXPECT_FALSE(answersAnything());
}

TEST_F(SharedLookTest, RecordCutShortAnywhereAnswersNothing) {
  keepTwo();
  const auto whole = readFile(file_);
  ASSERT_TRUE(whole);
  for (std::size_t size = 0; size < whole->size(); ++size) {
    std::filesystem::resize_file(file_, size);
    EXPECT_FALSE(answersAnything()) << size;
    ASSERT_TRUE(replaceFile(file_, *whole));
  }
  EXPECT_TRUE(answersAnything());
}

TEST_F(SharedLookTest, RecordThatOthersCouldHaveWrittenIsNotRead) {
  keepTwo();
  ASSERT_EQ(chmod(file_.c_str(), 0620), 0);
  EXPECT_FALSE(answersAnything());
  ASSERT_EQ(chmod(file_.c_str(), 0600), 0);
  EXPECT_TRUE(answersAnything());
}

TEST_F(SharedLookTest, RecordIsForTheUserAlone) {
  keepTwo();
  struct stat status = {};
  ASSERT_EQ(stat(file_.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0600u);
}

TEST_F(SharedLookTest, PlantedLinksAreNotFollowed) {
  const auto target = folder_.path() + "/target";
  for (const auto& link : {file_, file_ + ".new"}) {
    ASSERT_TRUE(replaceFile(target, "untouched"));
    ASSERT_EQ(symlink(target.c_str(), link.c_str()), 0);
    EXPECT_FALSE(answersAnything());
    keepTwo();
    EXPECT_TRUE(take("/Volumes/one"));
    EXPECT_EQ(*readFile(target), "untouched");
    unlink(link.c_str());
  }
  keepTwo();
  std::filesystem::rename(file_, target);
  ASSERT_EQ(symlink(target.c_str(), file_.c_str()), 0);
  EXPECT_FALSE(answersAnything());
}

TEST_F(SharedLookTest, PlantedPipeAndFolderHoldNobodyUp) {
  ASSERT_EQ(mkfifo(file_.c_str(), 0600), 0);
  EXPECT_FALSE(answersAnything());
  unlink(file_.c_str());
  ASSERT_EQ(mkdir(file_.c_str(), 0700), 0);
  EXPECT_FALSE(answersAnything());
  keepTwo();
  EXPECT_FALSE(answersAnything());
}

TEST_F(SharedLookTest, RecordThatIsBeingReadIsNotWaitedFor) {
  keepTwo();
  const Descriptor other(open(file_.c_str(), O_RDONLY | O_CLOEXEC));
  ASSERT_EQ(flock(other.get(), LOCK_EX), 0);
  EXPECT_FALSE(take("/Volumes/one"));
}

TEST_F(SharedLookTest, TooMuchToKeepIsNotKept) {
  look_.keep({{"/Volumes/one", std::string(5u << 20, 'n')}}, kBegan);
  EXPECT_FALSE(take("/Volumes/one"));
}

TEST_F(SharedLookTest, MissingFolderIsNoHarm) {
  const SharedLook nowhere(folder_.path() + "/missing/look", "asker");
  nowhere.keep({{"/Volumes/one", "p1\n"}}, kBegan);
  EXPECT_FALSE(nowhere.take("/Volumes/one", kBegan));
}

/// The environment of the asking process, as it was once the test is over.
class SharedLookOfParent : public ::testing::Test {
 protected:
  void SetUp() override {
    if (const char* before = getenv("XDG_RUNTIME_DIR")) before_ = before;
    chmod(runtime_.path().c_str(), 0700);
    setenv("XDG_RUNTIME_DIR", runtime_.path().c_str(), 1);
    setenv(kSeriesVariable, "1", 1);
  }
  void TearDown() override {
    unsetenv(kSeriesVariable);
    unsetenv("XDG_RUNTIME_DIR");
    if (!before_.empty()) setenv("XDG_RUNTIME_DIR", before_.c_str(), 1);
  }

  const TemporaryFolder runtime_;
  std::string before_;
};

TEST_F(SharedLookOfParent, SameParentAndMountTableShare) {
  const auto first = SharedLook::ofParent("table\n");
  const auto next = SharedLook::ofParent("table\n");
  ASSERT_TRUE(first && next);
  first->keep({{"/Volumes/one", "p1\n"}}, timeSinceBoot());
  EXPECT_TRUE(next->take("/Volumes/one", timeSinceBoot()));
}

TEST_F(SharedLookOfParent, ChangedMountTableMeansANewLook) {
  const auto first = SharedLook::ofParent("table\n");
  const auto next = SharedLook::ofParent("table\nmore\n");
  ASSERT_TRUE(first && next);
  first->keep({{"/Volumes/one", "p1\n"}}, kBegan);
  EXPECT_FALSE(next->take("/Volumes/one", kBegan));
  EXPECT_TRUE(first->take("/Volumes/one", kBegan));
}

TEST_F(SharedLookOfParent, WhoDoesNotAskInSeriesHasALookOfTheirOwn) {
  unsetenv(kSeriesVariable);
  EXPECT_FALSE(SharedLook::ofParent("table\n"));
}

TEST_F(SharedLookOfParent, RuntimeFolderThatIsOpenToOthersIsNotUsed) {
  ASSERT_TRUE(SharedLook::ofParent("table\n"));
  ASSERT_EQ(chmod((runtime_.path() + "/com.norwaldex.Quillmont").c_str(), 0755), 0);
  EXPECT_FALSE(SharedLook::ofParent("table\n"));
}

}  // namespace
}  // namespace quillmont
