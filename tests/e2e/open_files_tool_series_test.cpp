// The open-files tool, asked about one image after another: what one look has found out answers for
// all, and no user is missed for it.

#include <chrono>
#include <map>
#include <thread>

#include "platform/linux/question_series.h"
#include "platform/linux/user_folders.h"
#include "platform/linux/volume_paths.h"
#include "tests/e2e/OpenFilesTool.h"
#include "tests/support/DiskImages.h"
#include "tests/support/Holder.h"

namespace quillmont {
namespace {

using namespace std::chrono_literals;
using testing::Holder;

/// Two images of the user's, each with a file.
class OpenFilesToolSeries : public OpenFilesTool {
 protected:
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(OpenFilesTool::SetUp());
    if (IsSkipped()) return;
    chmod(runtime_.path().c_str(), 0700);
    ASSERT_NO_FATAL_FAILURE(mountMemory("/media"));
    for (const auto& volume : {one_, two_}) ASSERT_NO_FATAL_FAILURE(mountImage(volume));
  }

  void mountImage(const std::string& place) {
    if (IsSkipped()) return;
    const auto image = imageOf(place);
    std::ofstream(image).close();
    std::filesystem::resize_file(image, 4u << 20);
    std::filesystem::create_directories(place);
    if (testing::run({"mkfs.ext4", "-q", image}).status != 0 ||
        testing::run({"mount", "-o", "loop", image, place}).status != 0) {
      GTEST_SKIP() << "no loop device on this machine";
    }
    mounted_.push_back(place);
    ASSERT_TRUE(std::ofstream(place + "/file") << "x");
  }

  std::string imageOf(const std::string& place) const {
    return folder_.path() + place.substr(place.rfind('/')) + ".img";
  }

  testing::Environment series() const {
    return testing::environmentWith({{kSeriesVariable, "1"}, {"XDG_RUNTIME_DIR", runtime_.path()}});
  }

  /// The program knows a volume by the name that it is presented under. Put by another program, if
  /// one is named.
  static std::vector<std::string> question(const std::string& place,
                                           std::vector<std::string> command = {}) {
    const auto presented = presentedVolumePath(place, userName(), {});
    command.insert(command.end(), {kTool, "-F", "cpn", presented});
    return command;
  }

  Pids usersInSeries(const std::string& place) const {
    return pidsIn(testing::run(question(place), series()).standardOutput);
  }

  /// Whether the look at hand still has an answer to give about a path that begins so.
  bool hasAnswersLeft(const std::string& path = "/") const {
    std::ostringstream text;
    text << std::ifstream(look_).rdbuf();
    return text.str().find(std::string("new\0", 4) + path) != std::string::npos;
  }

  Holder holderOf(const std::string& place) const {
    return Holder([&] { return opened(place + "/file", O_RDONLY); });
  }

  const testing::TemporaryFolder runtime_;
  const std::string look_ = runtime_.path() + "/com.norwaldex.Quillmont/look";
  const std::string one_ = testing::DiskImages::realPlace("one");
  const std::string two_ = testing::DiskImages::realPlace("two");
};

TEST_F(OpenFilesToolSeries, UsersOfEachImageAreToldApartByOneLook) {
  const auto first = holderOf(one_);
  const auto second = holderOf(two_);
  EXPECT_EQ(usersInSeries(one_), Pids{first.pid()});
  EXPECT_TRUE(hasAnswersLeft());
  EXPECT_EQ(usersInSeries(two_), Pids{second.pid()});
}

TEST_F(OpenFilesToolSeries, AnswersAreTheSameAsThoseOfALookOfOnesOwn) {
  const auto first = holderOf(two_);
  const Holder second([&] { return chdir(two_.c_str()) == 0; });
  usersInSeries(one_);
  const auto own = ask(two_);
  const auto shared = testing::run(question(two_), series());
  EXPECT_EQ(shared.standardOutput, own.standardOutput);
  EXPECT_EQ(shared.status, own.status);
}

TEST_F(OpenFilesToolSeries, ImageThatIsAskedAboutAgainIsLookedAtAnew) {
  EXPECT_EQ(usersInSeries(one_), Pids{});
  const auto first = holderOf(one_);
  const auto second = holderOf(two_);
  EXPECT_EQ(usersInSeries(one_), Pids{first.pid()});
  EXPECT_EQ(usersInSeries(two_), Pids{second.pid()}) << "the new look saw this one, too";
  EXPECT_EQ(usersInSeries(two_), Pids{second.pid()});
}

TEST_F(OpenFilesToolSeries, LookIsTooOldAfterASecond) {
  EXPECT_EQ(usersInSeries(one_), Pids{});
  const auto holder = holderOf(two_);
  std::this_thread::sleep_for(1s);
  EXPECT_EQ(usersInSeries(two_), Pids{holder.pid()});
}

TEST_F(OpenFilesToolSeries, OtherProcessHasALookOfItsOwn) {
  EXPECT_EQ(usersInSeries(one_), Pids{});
  const auto holder = holderOf(two_);
  const auto outcome = testing::run(question(two_, {"sh", "-c", "\"$@\"; exit 7", "sh"}), series());
  EXPECT_EQ(outcome.status, 7);
  EXPECT_EQ(pidsIn(outcome.standardOutput), Pids{holder.pid()});
}

TEST_F(OpenFilesToolSeries, WhoStartsTheToolByHandHasALookOfTheirOwn) {
  EXPECT_EQ(usersInSeries(one_), Pids{});
  const auto holder = holderOf(two_);
  const auto outcome = testing::run(
      question(two_), testing::environmentWith({{"XDG_RUNTIME_DIR", runtime_.path()}}));
  EXPECT_EQ(pidsIn(outcome.standardOutput), Pids{holder.pid()});
}

TEST_F(OpenFilesToolSeries, MountThatHasComeSinceMeansANewLook) {
  EXPECT_EQ(usersInSeries(one_), Pids{});
  const auto holder = holderOf(two_);
  ASSERT_NO_FATAL_FAILURE(mountMemory(folder_.path() + "/three"));
  EXPECT_EQ(usersInSeries(two_), Pids{holder.pid()});
}

TEST_F(OpenFilesToolSeries, LookThatCannotBeKeptOrTakenHidesNobody) {
  if (testing::run({"strace", "-o", "/dev/null", "true"}).status != 0) {
    GTEST_SKIP() << "there is no strace, or nothing may be traced here";
  }
  // The tracer stands aside, so that the test itself remains the one who asks.
  const auto usersDespite = [&](const std::string& fault, const std::string& place) {
    auto environment = series();
    environment["ASAN_OPTIONS"] = "detect_leaks=0";
    const auto command =
        question(place, {"strace", "-D", "-o", "/dev/null", "-e", "inject=" + fault});
    return pidsIn(testing::run(command, environment).standardOutput);
  };
  for (const char* fault :
       {"flock:error=EIO", "pwrite64:error=ENOSPC", "rename:error=ENOSPC", "unlink:error=EIO"}) {
    SCOPED_TRACE(fault);
    std::filesystem::remove(look_);
    EXPECT_EQ(usersInSeries(one_), Pids{});
    EXPECT_TRUE(hasAnswersLeft());
    const auto holder = holderOf(two_);
    EXPECT_EQ(usersDespite(fault, one_), Pids{}) << "a new series";
    EXPECT_EQ(usersInSeries(two_), Pids{holder.pid()});

    std::filesystem::remove(look_);
    EXPECT_EQ(usersInSeries(one_), Pids{});
    EXPECT_EQ(usersDespite(fault, two_), Pids{holder.pid()});
  }
}

TEST_F(OpenFilesToolSeries, ImagesOfTheSystemAreLookedAtOnlyForThemselves) {
  const auto packaged = folder_.path() + "/packaged";
  ASSERT_NO_FATAL_FAILURE(mountImage(packaged));
  const auto first = holderOf(one_);
  const auto second = holderOf(packaged);
  EXPECT_EQ(usersInSeries(one_), Pids{first.pid()});
  EXPECT_TRUE(hasAnswersLeft());
  EXPECT_TRUE(hasAnswersLeft("/Volumes/two"));
  EXPECT_FALSE(hasAnswersLeft(packaged));
  EXPECT_EQ(usersInSeries(packaged), Pids{second.pid()});
}

TEST_F(OpenFilesToolSeries, ImageThatTookThePlaceOfAnotherIsLookedAtAnew) {
  EXPECT_EQ(usersInSeries(one_), Pids{});
  ASSERT_EQ(umount2(two_.c_str(), 0), 0);
  mounted_.pop_back();
  ASSERT_NO_FATAL_FAILURE(mountMemory(folder_.path() + "/between"));
  ASSERT_EQ(testing::run({"mount", "-o", "loop", imageOf(two_), two_}).status, 0);
  mounted_.push_back(two_);
  const auto holder = holderOf(two_);
  EXPECT_EQ(usersInSeries(two_), Pids{holder.pid()});
}

}  // namespace
}  // namespace quillmont
