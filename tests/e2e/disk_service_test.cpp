// The disk-image tool in the hands of an ordinary user, with the desktop's real disk service on a
// bus of the test's own.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>

#include "platform/posix/Descriptor.h"
#include "platform/posix/files.h"
#include "tests/support/DiskImages.h"

namespace quillmont {
namespace {

using namespace std::chrono_literals;
using testing::DiskImages;
using testing::eventually;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::Outcome;
using testing::Program;
using ::testing::SizeIs;
using ::testing::StartsWith;

constexpr uid_t kUser = 65534;   // "nobody", whom the rule below allows what a desktop allows
constexpr uid_t kStranger = 1;   // "daemon", who may detach what others attached, and no more
constexpr char kBus[] = "/bus";  // in the laboratory's folder

/// Starts bus, device manager, authority and disk service in namespaces of their own: their folders
/// are private, and all of them end with the first process. $1 is the laboratory's folder.
constexpr char kLaboratory[] = R"sh(
mount -t tmpfs none /media && mount -t tmpfs none /run || exit 1
mount -t tmpfs none /var/lib && mkdir /var/lib/udisks2 && mount --bind "$1/rules" /etc/polkit-1/rules.d || exit 1
mkdir -p /run/udisks2 /run/udev
export DBUS_SYSTEM_BUS_ADDRESS="unix:path=$1/bus"
dbus-daemon --system --nofork --nopidfile --nosyslog --address="$DBUS_SYSTEM_BUS_ADDRESS" &
/lib/systemd/systemd-udevd &
comes_up() {  # $1: name on the bus, $2: file for what is said
  for try in $(seq 200); do
    dbus-send --system --print-reply --dest="$1" / org.freedesktop.DBus.Peer.Ping >"$2" 2>&1 &&
      return 0
    sleep 0.05
  done
  return 1
}
for try in $(seq 100); do [ -S "$1/bus" ] && break; sleep 0.05; done
/usr/lib/polkit-1/polkitd --no-debug &
comes_up org.freedesktop.PolicyKit1 "$1/said" || exit 1
/usr/libexec/udisks2/udisksd &
comes_up org.freedesktop.UDisks2 "$1/said" && echo laboratory ready
wait
)sh";

constexpr char kRule[] = R"js(
polkit.addRule(function(action, subject) {
  if (subject.user == "nobody" && (action.id == "org.freedesktop.udisks2.loop-setup" ||
                                   action.id == "org.freedesktop.udisks2.filesystem-mount"))
    return polkit.Result.YES;
  if (subject.user == "daemon" && (action.id == "org.freedesktop.udisks2.loop-delete-others" ||
                                   action.id == "org.freedesktop.udisks2.filesystem-unmount-others"))
    return polkit.Result.YES;
});
)js";

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

class Laboratory {
 public:
  /// Why it cannot be had on this machine; empty if it can.
  static std::string whyImpossible() {
    if (auto reason = DiskImages::whyImpossible(); !reason.empty()) return reason;
    for (const char* needed :
         {"/usr/bin/dbus-daemon", "/usr/bin/dbus-send", "/lib/systemd/systemd-udevd",
          "/usr/lib/polkit-1/polkitd", "/usr/libexec/udisks2/udisksd", "/etc/polkit-1/rules.d"}) {
      if (access(needed, F_OK) != 0) return std::string("this machine has no ") + needed;
    }
    // Entering the laboratory's mounts leaves a changed root folder behind.
    const auto inside = testing::run(
        {"nsenter", "--mount=/proc/self/ns/mnt", "test", "-e", DiskImages::toolPath()});
    if (inside.status != 0) {
      return "the root folder of the tests is not that of the system";
    }
    return "";
  }

  Laboratory() {
    chmod(folder_.path().c_str(), 0755);
    std::filesystem::create_directory(folder_.path() + "/rules");
    chmod((folder_.path() + "/rules").c_str(), 0755);
    std::ofstream(folder_.path() + "/rules/10-test.rules") << kRule;
    std::filesystem::copy_file(DiskImages::toolPath(), tool());
    chmod(tool().c_str(), 0755);
    first_ = std::make_unique<Program>(std::vector<std::string>{
        "unshare", "--mount", "--propagation", "slave", "--pid", "--fork", "--kill-child",
        "--mount-proc", "sh", "-c", kLaboratory, "sh", folder_.path()});
  }

  bool comesUp() { return first_->waitForOutput("laboratory ready", 20s); }
  std::string output() { return first_->output(); }

  /// Runs the tool in the laboratory as `user`.
  Outcome tool(const std::vector<std::string>& arguments, uid_t user = kUser) const {
    const std::string home = folder_.path() + "/" + std::to_string(user);
    std::filesystem::create_directories(home);
    chmod(home.c_str(), 0700);
    if (chown(home.c_str(), user, user) != 0) ADD_FAILURE() << "chown";
    std::vector<std::string> command = {"nsenter",        "--mount",
                                        "--pid",          "--target",
                                        child(),          "setpriv",
                                        "--reuid",        std::to_string(user),
                                        "--regid",        std::to_string(user),
                                        "--clear-groups", tool()};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return testing::run(command, {{"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + folder_.path() + kBus},
                                  {"XDG_RUNTIME_DIR", home},
                                  {"HOME", home}});
  }

  /// Starts a program in the laboratory as the superuser.
  std::unique_ptr<Program> start(const std::vector<std::string>& arguments) const {
    std::vector<std::string> command = {"nsenter", "--mount", "--pid", "--target", child()};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return std::make_unique<Program>(command);
  }

  /// A path of the laboratory as seen from outside of it.
  std::string inside(const std::string& path) const { return "/proc/" + child() + "/root" + path; }

 private:
  std::string tool() const { return folder_.path() + "/hdiutil"; }

  std::string child() const {
    const auto pid = std::to_string(first_->pid());
    const auto children = readFile("/proc/" + pid + "/task/" + pid + "/children");
    return children ? children->substr(0, children->find(' ')) : "";
  }

  testing::TemporaryFolder folder_;
  std::unique_ptr<Program> first_;
};

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
    if (chown(image.c_str(), kUser, kUser) != 0) ADD_FAILURE() << "chown";
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
  const auto outcome = laboratory_->tool({"attach", image}, kStranger);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.standardError, HasSubstr("Not authorized"));
  EXPECT_THAT(DiskImages::loopsOf(image), IsEmpty());
}

TEST_F(DiskService, TheVolumesOfOthersStay) {
  const auto image = imageOfUser("Quill Other");
  ASSERT_EQ(laboratory_->tool({"attach", image}).status, 0);
  // May he look and does the service say yes to him, he is refused all the same.
  ASSERT_EQ(chmod(laboratory_->inside("/media/nobody").c_str(), 0755), 0);
  const auto outcome = laboratory_->tool({"detach", "/media/nobody/Quill Other"}, kStranger);
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
  const auto automounter = laboratory_->start({"sh", "-c", kAutomounter, "sh", image});
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
  const std::string tool = folder.path() + "/hdiutil";
  std::filesystem::copy_file(DiskImages::toolPath(), tool);
  chmod(tool.c_str(), 0755);
  for (const char* verb : {"attach", "detach"}) {
    Program program({tool, verb, "/none"},
                    {{"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + folder.path() + "/none"}}, kUser);
    EXPECT_EQ(program.waitForExit(10s), 1);
    EXPECT_EQ(program.output(), std::string("hdiutil: ") + verb +
                                    " failed - cannot reach the system bus: No such file or "
                                    "directory\n");
  }
}

}  // namespace
}  // namespace quillmont
