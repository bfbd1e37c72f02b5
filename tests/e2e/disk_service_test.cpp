// The disk-image tool in the hands of an ordinary user, with the desktop's real disk service on a
// bus of the test's own.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <memory>

#include "platform/posix/Descriptor.h"
#include "platform/posix/files.h"
#include "tests/e2e/DiskServiceLaboratory.h"
#include "tests/support/DiskImages.h"

namespace quillmont {
namespace {

using namespace std::chrono_literals;
using testing::DiskImages;
using Laboratory = testing::DiskServiceLaboratory;
using testing::eventually;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::Program;
using ::testing::SizeIs;
using ::testing::StartsWith;

/// Mounts the image $1 as soon as a device carries it.
constexpr char kAutomounter[] = R"sh(
mkdir -p /media/nobody/Quick && echo watching
while :; do
  for attribute in /sys/block/loop*/loop/backing_file; do
    read -r file 2>/dev/null <"$attribute" && [ "$file" = "$1" ] || continue
    device=${attribute#/sys/block/}
    mount "/dev/${device%%/*}" /media/nobody/Quick && exit 0
  done
done 2>/dev/null
)sh";

class DiskService : public ::testing::Test {
 protected:
  void SetUp() override {
    if (const auto reason = Laboratory::whyImpossible(); !reason.empty()) GTEST_SKIP() << reason;
    laboratory_ = std::make_unique<Laboratory>();
    if (!laboratory_->comesUp()) {
      GTEST_SKIP() << "the disk service does not start here: " << laboratory_->output();
    }
    chmod(images_.path().c_str(), 0755);
  }

  std::string imageOfUser(const std::string& label) {
    auto image = images_.makeExt4("a \"b\" 翼.img", label);
    if (chown(image.c_str(), Laboratory::kUser, Laboratory::kUser) != 0) ADD_FAILURE() << "chown";
    return image;
  }

  std::string info() { return laboratory_->tool({"info", "-plist"}).standardOutput; }
  bool listsPlace(const std::string& place) {
    return info().find("<string>" + place + "</string>") != std::string::npos;
  }

  DiskImages images_;
  std::unique_ptr<Laboratory> laboratory_;
};

TEST_F(DiskService, AnOrdinaryUserAttachesAndDetaches) {
  const auto image = imageOfUser("Quill User");
  const auto attached = laboratory_->tool({"attach", image});
  ASSERT_EQ(attached.status, 0) << attached.standardError;
  EXPECT_THAT(attached.standardOutput, HasSubstr("\t/Volumes/Quill User\n"));
  EXPECT_TRUE(listsPlace("/Volumes/Quill User"));
  EXPECT_TRUE(std::filesystem::exists(laboratory_->inside("/media/nobody/Quill User/note.txt")));

  const auto detached = laboratory_->tool({"detach", "/Volumes/Quill User", "-force"});
  EXPECT_EQ(detached.status, 0) << detached.standardError;
  EXPECT_FALSE(listsPlace("/Volumes/Quill User"));
  EXPECT_THAT(DiskImages::loopsOf(image), IsEmpty());
}

TEST_F(DiskService, AttachingTwiceMakesOneDevice) {
  const auto image = imageOfUser("Quill Twice");
  ASSERT_EQ(laboratory_->tool({"attach", image}).status, 0);
  const auto again = laboratory_->tool({"attach", image});
  EXPECT_EQ(again.status, 0) << again.standardError;
  EXPECT_THAT(again.standardOutput, HasSubstr("\t/Volumes/Quill Twice\n"));
  EXPECT_THAT(DiskImages::loopsOf(image), SizeIs(1));
}

TEST_F(DiskService, AForcedDetachKeepsABusyVolumeListedUntilItIsLetGo) {
  const auto image = imageOfUser("Quill Busy");
  ASSERT_EQ(laboratory_->tool({"attach", image}).status, 0);
  Descriptor held(open(laboratory_->inside("/media/nobody/Quill Busy/note.txt").c_str(),
                       O_WRONLY | O_APPEND | O_CLOEXEC));
  ASSERT_TRUE(held);
  const auto gentle = laboratory_->tool({"detach", "/Volumes/Quill Busy"});
  EXPECT_EQ(gentle.status, 1);
  EXPECT_THAT(gentle.standardError, HasSubstr("busy"));

  const auto forced = laboratory_->tool({"detach", "/Volumes/Quill Busy", "-force"});
  EXPECT_EQ(forced.status, 0) << forced.standardError;
  EXPECT_TRUE(listsPlace("/Volumes/Quill Busy"));
  EXPECT_TRUE(writeAll(held.get(), "more\n"));
  held.reset();
  EXPECT_TRUE(eventually([&] { return !listsPlace("/Volumes/Quill Busy"); }, 5s));

  ASSERT_EQ(laboratory_->tool({"attach", image}).status, 0);
  EXPECT_EQ(readFile(laboratory_->inside("/media/nobody/Quill Busy/note.txt")).value(),
            "kept in an image\nmore\n");
}

TEST_F(DiskService, AnImageWithHoldersComesBackOnTheSameDevice) {
  const auto image = imageOfUser("Quill Back");
  ASSERT_EQ(laboratory_->tool({"attach", image}).status, 0);
  const Descriptor held(
      open(laboratory_->inside("/media/nobody/Quill Back").c_str(), O_RDONLY | O_CLOEXEC));
  ASSERT_EQ(laboratory_->tool({"detach", "/Volumes/Quill Back", "-force"}).status, 0);
  const auto loops = DiskImages::loopsOf(image);
  EXPECT_THAT(loops, SizeIs(1));
  const auto again = laboratory_->tool({"attach", image});
  EXPECT_EQ(again.status, 0) << again.standardError;
  EXPECT_EQ(DiskImages::loopsOf(image), loops);
}

TEST_F(DiskService, ADamagedImageStaysUnattached) {
  const auto image = imageOfUser("Quill Broken");
  const Descriptor file(open(image.c_str(), O_WRONLY | O_CLOEXEC));
  const std::string zeros(1 << 18, '\0');
  ASSERT_EQ(pwrite(file.get(), zeros.data(), zeros.size(), 2048), 1 << 18);
  const auto outcome = laboratory_->tool({"attach", image});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.standardError, StartsWith("hdiutil: attach failed - "));
  EXPECT_TRUE(eventually([&] { return DiskImages::loopsOf(image).empty(); }, 5s));
}

TEST_F(DiskService, ItsRefusalIsHandedOnWithoutAskingForAPassword) {
  const auto image = imageOfUser("Quill Stranger");
  chmod(image.c_str(), 0666);
  const auto outcome = laboratory_->tool({"attach", image}, Laboratory::kStranger);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.standardError, HasSubstr("Not authorized"));
  EXPECT_THAT(DiskImages::loopsOf(image), IsEmpty());
}

TEST_F(DiskService, TheVolumesOfOthersStay) {
  const auto image = imageOfUser("Quill Other");
  ASSERT_EQ(laboratory_->tool({"attach", image}).status, 0);
  // May he look and does the service say yes to him, he is refused all the same.
  ASSERT_EQ(chmod(laboratory_->inside("/media/nobody").c_str(), 0755), 0);
  const auto outcome =
      laboratory_->tool({"detach", "/media/nobody/Quill Other"}, Laboratory::kStranger);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.standardError, "hdiutil: detach failed - attached by another user\n");
  EXPECT_TRUE(listsPlace("/Volumes/Quill Other"));
}

TEST_F(DiskService, AnImageInThePlaceOfADeletedOneIsRefused) {
  const auto image = imageOfUser("Quill Old");
  ASSERT_EQ(testing::run({"losetup", "--find", image}).status, 0);
  std::filesystem::remove(image);
  imageOfUser("Quill New");
  const auto outcome = laboratory_->tool({"attach", image});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.standardError, HasSubstr("may carry this image already"));
  EXPECT_THAT(DiskImages::loopsOf(image), SizeIs(1));
}

TEST_F(DiskService, TheOwnerDetachesAnImageThatWasDeleted) {
  const auto image = imageOfUser("Quill Deleted");
  ASSERT_EQ(laboratory_->tool({"attach", image}).status, 0);
  std::filesystem::remove(image);
  const auto outcome = laboratory_->tool({"detach", "/Volumes/Quill Deleted"});
  // The service may have put the volume away already, for want of its file.
  if (outcome.standardError != "hdiutil: detach failed - No such file or directory\n") {
    EXPECT_EQ(outcome.status, 0) << outcome.standardError;
  }
  EXPECT_FALSE(listsPlace("/Volumes/Quill Deleted"));
}

TEST_F(DiskService, AnAutomounterThatIsQuickerDoesNoHarm) {
  const auto image = imageOfUser("Quill Quick");
  // Quicker than the disk service on a busy machine, too.
  const auto automounter =
      laboratory_->start({"nice", "-n", "-20", "sh", "-c", kAutomounter, "sh", image});
  ASSERT_TRUE(automounter->waitForOutput("watching", 5s));
  const auto outcome = laboratory_->tool({"attach", image});
  EXPECT_EQ(automounter->waitForExit(10s), 0) << automounter->output();
  EXPECT_EQ(outcome.status, 0) << outcome.standardError;
  EXPECT_THAT(outcome.standardOutput, HasSubstr("\t/Volumes/Quick\n"));
}

TEST(DiskServiceMissing, WithoutASystemBusAttachingAndDetachingFailWithAReason) {
  if (geteuid() != 0) GTEST_SKIP() << "becoming an ordinary user takes the superuser";
  const testing::TemporaryFolder folder;
  chmod(folder.path().c_str(), 0755);
  const auto tool = DiskImages::copyToolTo(folder.path());
  for (const char* verb : {"attach", "detach"}) {
    Program program({tool, verb, "/none"},
                    {{"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + folder.path() + "/none"}},
                    Laboratory::kUser);
    EXPECT_EQ(program.waitForExit(10s), 1);
    EXPECT_EQ(program.output(), std::string("hdiutil: ") + verb +
                                    " failed - cannot reach the system bus: No such file or "
                                    "directory\n");
  }
}

}  // namespace
}  // namespace quillmont
