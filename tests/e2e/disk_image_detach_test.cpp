// The disk-image tool detaches images, used and unused ones, and loses nobody's data.

#include <fcntl.h>
#include <sys/mount.h>

#include <fstream>

#include "platform/posix/Descriptor.h"
#include "tests/e2e/DiskImageToolTest.h"

namespace quillmont {
namespace {

using namespace std::chrono_literals;
using testing::DiskImages;
using testing::eventually;
using ::testing::HasSubstr;

constexpr char kNote[] = "kept in an image\n";

using DiskImageDetach = testing::DiskImageToolTest;

TEST_F(DiskImageDetach, WithoutForceABusyVolumeStays) {
  const auto image = images_.makeExt4("a.img", "Quill Busy");
  attach(image);
  const Descriptor held(
      open((DiskImages::realPlace("Quill Busy") + "/note.txt").c_str(), O_RDONLY | O_CLOEXEC));
  const auto outcome = images_.tool({"detach", "/Volumes/Quill Busy"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.standardError, "hdiutil: detach failed - Device or resource busy\n");
  EXPECT_TRUE(std::filesystem::exists(DiskImages::realPlace("Quill Busy") + "/note.txt"));
}

TEST_F(DiskImageDetach, AForcedDetachCostsAWriterNothing) {
  const auto image = images_.makeExt4("a.img", "Quill Writer");
  attach(image);
  std::ofstream writer(DiskImages::realPlace("Quill Writer") + "/log");
  writer << "before\n" << std::flush;
  detach("/Volumes/Quill Writer");
  EXPECT_EQ(listed(image), std::vector<std::string>{"/Volumes/Quill Writer"});
  EXPECT_FALSE(std::filesystem::exists(DiskImages::realPlace("Quill Writer")));
  writer << "after\n" << std::flush;
  EXPECT_TRUE(writer.good());
  EXPECT_EQ(listed(image), std::vector<std::string>{"/Volumes/Quill Writer"});
  writer.close();
  EXPECT_TRUE(eventually([&] { return !listed(image); }, 5s));

  attach(image);
  EXPECT_EQ(readFile(DiskImages::realPlace("Quill Writer") + "/log").value(), "before\nafter\n");
  detach("/Volumes/Quill Writer");
  EXPECT_EQ(testing::run({"e2fsck", "-f", "-n", image}).status, 0);
}

TEST_F(DiskImageDetach, ABusyPartitionKeepsThePlacesOfTheOthersListed) {
  const auto image = images_.makePartitioned("a.img", {"Quill P1", "Quill P2"});
  attach(image);
  Descriptor held(open(DiskImages::realPlace("Quill P1").c_str(), O_RDONLY | O_CLOEXEC));
  detach("/Volumes/Quill P2");
  EXPECT_EQ(listed(image),
            (std::vector<std::string>{"", "/Volumes/Quill P1", "/Volumes/Quill P2"}));
  held.reset();
  EXPECT_TRUE(eventually([&] { return !listed(image); }, 5s));
}

TEST_F(DiskImageDetach, WhoUsesTheSecondVolumeUsesTheImage) {
  const auto image = images_.makePartitioned("a.img", {"Quill One", "Quill Two"});
  attach(image);
  const auto users = [this] {
    return testing::run(
               {QUILLMONT_BUNDLE "/Contents/libexec/lsof", "-F", "cpn", "/Volumes/Quill One"},
               images_.environment())
        .standardOutput;
  };
  EXPECT_EQ(users(), "");
  std::ofstream writer(DiskImages::realPlace("Quill Two") + "/log");
  const auto own = "p" + std::to_string(getpid()) + "\n";
  EXPECT_THAT(users(), HasSubstr(own));
  detach("/Volumes/Quill One");
  EXPECT_EQ(listed(image),
            (std::vector<std::string>{"", "/Volumes/Quill One", "/Volumes/Quill Two"}));
  EXPECT_THAT(users(), HasSubstr(own));
  writer.close();
  EXPECT_TRUE(eventually([&] { return !listed(image); }, 5s));
}

TEST_F(DiskImageDetach, ABusyBtrfsVolumeLivesOnToo) {
  if (const auto reason = DiskImages::whyImpossible("btrfs"); !reason.empty()) {
    GTEST_SKIP() << reason;
  }
  const auto image = images_.makeBtrfs("a.img", "Quill Tree");
  attach(image);
  Descriptor held(open(DiskImages::realPlace("Quill Tree").c_str(), O_RDONLY | O_CLOEXEC));
  detach("/Volumes/Quill Tree");
  EXPECT_EQ(listed(image), std::vector<std::string>{"/Volumes/Quill Tree"});
  held.reset();
  EXPECT_TRUE(eventually([&] { return !listed(image); }, 5s));
}

TEST_F(DiskImageDetach, AttachingAnImageWithHoldersBringsItBackOnTheSameDevice) {
  const auto image = images_.makeExt4("a.img", "Quill Back");
  attach(image);
  const auto note = DiskImages::realPlace("Quill Back") + "/note.txt";
  const Descriptor held(open(note.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC));
  detach("/Volumes/Quill Back");
  const auto loops = DiskImages::loopsOf(image);
  attach(image);
  EXPECT_EQ(DiskImages::loopsOf(image), loops);
  EXPECT_EQ(listed(image), std::vector<std::string>{"/Volumes/Quill Back"});
  ASSERT_TRUE(writeAll(held.get(), "more\n"));
  EXPECT_EQ(readFile(note).value(), std::string(kNote) + "more\n");
}

TEST_F(DiskImageDetach, AHolderFromBeforeIsStillKnownAfterTheVolumeCameBack) {
  const auto image = images_.makeExt4("a.img", "Quill Again");
  attach(image);
  Descriptor held(open(DiskImages::realPlace("Quill Again").c_str(), O_RDONLY | O_CLOEXEC));
  detach("/Volumes/Quill Again");
  attach(image);
  detach("/Volumes/Quill Again");  // unmounts cleanly: the holder is on the old mount
  EXPECT_EQ(listed(image), std::vector<std::string>{"/Volumes/Quill Again"});
  detach("/Volumes/Quill Again");
  held.reset();
  EXPECT_TRUE(eventually([&] { return !listed(image); }, 5s));
}

TEST_F(DiskImageDetach, TheNameOfAVolumeThatLivesOnIsNotGivenAway) {
  const auto first = images_.makeExt4("a.img", "Quill");
  const auto second = images_.makeExt4("b.img", "Quill");
  attach(first);
  const Descriptor held(open(DiskImages::realPlace("Quill").c_str(), O_RDONLY | O_CLOEXEC));
  detach("/Volumes/Quill");
  attach(second);
  EXPECT_EQ(listed(first), std::vector<std::string>{"/Volumes/Quill"});
  EXPECT_EQ(listed(second), std::vector<std::string>{"/Volumes/Quill1"});
}

TEST_F(DiskImageDetach, AVolumeThatLivesOnIsToldFromAnotherOneThatIsAtItsPlaceNow) {
  const auto first = images_.makeExt4("a.img", "Quill");
  const auto second = images_.makeExt4("b.img", "Second");
  attach(first);
  attach(second);
  const Descriptor held(open(DiskImages::realPlace("Quill").c_str(), O_RDONLY | O_CLOEXEC));
  detach("/Volumes/Quill");
  const auto place = DiskImages::realPlace("Quill");
  std::filesystem::create_directory(place);
  const auto device = "/dev/" + DiskImages::loopsOf(second).at(0);
  ASSERT_EQ(mount(device.c_str(), place.c_str(), "ext4", 0, nullptr), 0);
  ASSERT_EQ(umount2(DiskImages::realPlace("Second").c_str(), 0), 0);
  std::filesystem::remove(DiskImages::realPlace("Second"));
  const auto apart = "/Volumes/Quill (" + DiskImages::loopsOf(first).at(0) + ")";
  EXPECT_EQ(listed(first), std::vector<std::string>{apart});
  EXPECT_EQ(listed(second), std::vector<std::string>{"/Volumes/Quill"});
  detach(apart);
  EXPECT_EQ(listed(first), std::vector<std::string>{apart});
  EXPECT_EQ(listed(second), std::vector<std::string>{"/Volumes/Quill"});
  detach("/Volumes/Quill");
  expectGone(second);
  EXPECT_EQ(listed(first), std::vector<std::string>{"/Volumes/Quill"});
}

TEST_F(DiskImageDetach, AnImageWithSomethingElseMountedInsideIsLeftWhole) {
  const auto outer = images_.makeExt4("a.img", "Quill Outer");
  attach(outer);
  const auto inside = DiskImages::realPlace("Quill Outer") + "/inside";
  std::filesystem::create_directory(inside);
  ASSERT_EQ(mount("none", inside.c_str(), "tmpfs", 0, nullptr), 0);
  const auto outcome = images_.detach("/Volumes/Quill Outer");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.standardError, HasSubstr("mounted at " + inside));
  EXPECT_EQ(umount2(inside.c_str(), 0), 0);
  detach("/Volumes/Quill Outer");
  expectGone(outer);
}

TEST_F(DiskImageDetach, AnImageThatHoldsAnotherAttachedImageIsLeftWhole) {
  const auto outer = images_.makeExt4("a.img", "Quill Around", 64);
  attach(outer);
  const auto inner = DiskImages::realPlace("Quill Around") + "/b.img";
  std::filesystem::copy_file(images_.makeExt4("b.img", "Quill Within"), inner);
  attach(inner);
  const auto outcome = images_.detach("/Volumes/Quill Around");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.standardError,
            "hdiutil: detach failed - Device or resource busy: it holds another attached image, " +
                inner + "\n");
  EXPECT_EQ(listed(outer), std::vector<std::string>{"/Volumes/Quill Around"});
  detach("/Volumes/Quill Within");
  detach("/Volumes/Quill Around");
  expectGone(outer);
}

TEST_F(DiskImageDetach, BindMountsOfAFolderAreNoVolumesAndGoWithTheImage) {
  const auto image = images_.makeExt4("a.img", "Quill Bind");
  attach(image);
  const auto folder = DiskImages::realPlace("Quill Bind") + "/lost+found";
  const auto bound = images_.path() + "/bound";
  std::filesystem::create_directory(bound);
  ASSERT_EQ(mount(folder.c_str(), bound.c_str(), nullptr, MS_BIND, nullptr), 0);
  EXPECT_EQ(listed(image), std::vector<std::string>{"/Volumes/Quill Bind"});
  detach("/Volumes/Quill Bind");
  expectGone(image);
}

TEST_F(DiskImageDetach, DetachesByTheRealPlaceAndByTheDeviceToo) {
  const auto image = images_.makeExt4("a.img", "Quill Place");
  attach(image);
  detach(DiskImages::realPlace("Quill Place") + "/");
  expectGone(image);
  attach(image);
  detach("/dev/" + DiskImages::loopsOf(image).front());
  expectGone(image);
}

TEST_F(DiskImageDetach, ANamespaceThatKeepsTheVolumeDoesNotHoldUpTheDetachButKeepsItsPlaceListed) {
  const auto image = images_.makeExt4("a.img", "Quill Space");
  attach(image);
  const auto elsewhere = images_.path() + "/elsewhere";
  std::filesystem::create_directory(elsewhere);
  testing::Program other({"unshare", "-m", "--propagation", "private", "sh", "-c",
                          "mount --bind \"$1\" \"$2\" && echo ready && exec sleep 60", "sh",
                          DiskImages::realPlace("Quill Space"), elsewhere});
  ASSERT_TRUE(other.waitForOutput("ready", 5s));
  detach("/Volumes/Quill Space");
  EXPECT_FALSE(std::filesystem::exists(DiskImages::realPlace("Quill Space")));
  EXPECT_EQ(listed(image), std::vector<std::string>{"/Volumes/Quill Space"});
  other.signal(SIGKILL);
  EXPECT_TRUE(eventually([&] { return !listed(image); }, 5s));
}

TEST_F(DiskImageDetach, DetachingSomethingUnknownFails) {
  for (const std::string place : {"/Volumes/no such volume", "", "/", "/proc", "/dev/null"}) {
    const auto outcome = images_.detach(place);
    EXPECT_EQ(outcome.status, 1) << place;
    EXPECT_EQ(outcome.standardError, "hdiutil: detach failed - No such file or directory\n");
  }
}
}  // namespace
}  // namespace quillmont
