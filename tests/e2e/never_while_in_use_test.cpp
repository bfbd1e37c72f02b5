// The program ejects no image that somebody uses, whatever the way: one image for each, all at
// once, with a timeout that is soon over. QUILLMONT_IN_USE_SECONDS says for how long.

#include <gmock/gmock.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/prctl.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <thread>

#include "tests/support/DiskImages.h"
#include "tests/support/Holder.h"
#include "tests/support/NotificationRecorder.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/Session.h"
#include "tests/support/own_volumes.h"
#include "tests/support/volume_uses.h"

namespace quillmont::testing {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using ::testing::HasSubstr;
using ::testing::Not;

/// The program works in the background: on a busy machine its cycles take long.
constexpr auto kPatience = 40s;

std::chrono::seconds watchedFor() {
  const char* const seconds = std::getenv("QUILLMONT_IN_USE_SECONDS");
  return seconds ? std::chrono::seconds(std::atoi(seconds)) : 7s;
}

class NeverWhileInUse : public ::testing::Test {
 protected:
  void SetUp() override {
    if (const auto reason = DiskImages::whyImpossible(); !reason.empty()) GTEST_SKIP() << reason;
    if (!PrivateBus::available()) GTEST_SKIP() << "this machine has no message bus daemon";
    static const std::string withoutVolumes = enterOwnVolumes();
    if (!withoutVolumes.empty()) GTEST_SKIP() << withoutVolumes;
    bus = std::make_unique<PrivateBus>();
    recorder = std::make_unique<NotificationRecorder>(bus->address());
    session = std::make_unique<Session>(bus->address());
    session->store({{"timeoutSeconds", 2.0}});
    images = std::make_unique<DiskImages>(session->environment());
  }

  void TearDown() override {
    for (auto place = mounted.rbegin(); place != mounted.rend(); ++place) {
      EXPECT_EQ(umount2(place->c_str(), MNT_DETACH), 0) << *place;
    }
    holders.clear();
    images.reset();
  }

  /// The place of a new image's volume.
  std::string attach(const std::string& label, int mebibytes = 16) {
    const auto outcome = images->attach(images->makeExt4(label + ".img", label, mebibytes));
    EXPECT_EQ(outcome.status, 0) << outcome.standardError;
    return DiskImages::realPlace(label);
  }

  void hold(const std::string& volume, const VolumeUse& use) {
    const std::string name = std::string("by ") + use.name;
    holders[use.name] = std::make_unique<Holder>(
        [&] { return prctl(PR_SET_NAME, name.c_str()) == 0 && use.take(volume); });
  }

  bool attached(const std::string& label) {
    return !DiskImages::loopsOf(images->path() + "/" + label + ".img").empty();
  }

  /// Lets the program, which knows of everybody by now, look around for the whole time.
  void watch() {
    std::this_thread::sleep_for(watchedFor());
    ASSERT_TRUE(program->running()) << program->output();
  }

  bool waitUntilInUse(const std::string& label, const std::string& user) {
    return program->waitForOutput("Disk image is in use: /Volumes/" + label + " (" + user + ")\n",
                                  kPatience);
  }

  void terminate() {
    program->signal(SIGTERM);
    EXPECT_EQ(program->waitForExit(10s), 0) << program->output();
  }

  bool waitUntilEjected(const std::string& label) {
    return program->waitForOutput(
        "Successfully ejected and verified detached: /Volumes/" + label + "\n", kPatience);
  }

  std::unique_ptr<PrivateBus> bus;
  std::unique_ptr<NotificationRecorder> recorder;
  std::unique_ptr<Session> session;
  std::unique_ptr<DiskImages> images;
  std::map<std::string, std::unique_ptr<Holder>> holders;
  std::vector<std::string> mounted;
  std::unique_ptr<Program> program;
};

TEST_F(NeverWhileInUse, EveryWayToUseAnImageKeepsIt) {
  attach("Nobody");
  for (const auto& use : volumeUses()) hold(attach(use.name), use);
  program = session->start();
  for (const auto& use : volumeUses()) {
    const std::string name = use.name;
    EXPECT_TRUE(waitUntilInUse(name, name == "program" ? name : "by " + name)) << name;
  }
  watch();
  EXPECT_TRUE(waitUntilEjected("Nobody")) << "nothing would be ejected:\n" << program->output();
  for (const auto& use : volumeUses()) {
    EXPECT_TRUE(isMounted(DiskImages::realPlace(use.name))) << use.name;
    EXPECT_TRUE(attached(use.name)) << use.name;
  }
  EXPECT_THAT(program->output(), Not(HasSubstr("Failed to eject")));
  EXPECT_THAT(program->output(), Not(HasSubstr("Warning:")));
  ASSERT_TRUE(recorder->waitForNotifications(1, kPatience));
  EXPECT_EQ(recorder->notifications().size(), 1u);
  EXPECT_THAT(recorder->notifications().front().body, HasSubstr("\"Nobody\""));
  terminate();
}

TEST_F(NeverWhileInUse, ImageThatHoldsAnAttachedImageOrAMountIsRefusedAndStaysWhole) {
  const auto outer = attach("Outer", 48);
  const auto nested = outer + "/Inner.img";
  fs::copy_file(images->makeExt4("Inner.img", "Inner"), nested);
  const auto outcome = images->attach(nested);
  ASSERT_EQ(outcome.status, 0) << outcome.standardError;
  hold(DiskImages::realPlace("Inner"), volumeUses().front());
  const auto below = attach("Below") + "/below";
  fs::create_directory(below);
  ASSERT_EQ(mount("memory", below.c_str(), "tmpfs", 0, nullptr), 0);
  mounted.push_back(below);
  program = session->start();
  EXPECT_TRUE(waitUntilInUse("Inner", "by read"));
  watch();
  for (const std::string label : {"Outer", "Below"}) {
    EXPECT_TRUE(program->waitForOutput("Failed to eject: /Volumes/" + label, kPatience))
        << program->output();
    EXPECT_TRUE(isMounted(DiskImages::realPlace(label))) << label;
    EXPECT_TRUE(attached(label)) << label;
  }
  EXPECT_TRUE(isMounted(DiskImages::realPlace("Inner")));
  EXPECT_TRUE(recorder->notifications().empty());
  terminate();
  holders.clear();
  EXPECT_EQ(images->detach("/Volumes/Inner").status, 0);
}

/// Nobody can be asked about a file in flight: the image goes from sight, but not from its user.
TEST_F(NeverWhileInUse, FileInFlightIsKeptThoughNobodyIsSeenToHaveItAndNothingIsAnnounced) {
  hold(attach("Flight"), {"flight", useInFlight});
  program = session->start();
  ASSERT_TRUE(program->waitForOutput("Warning: hdiutil detach returned 0", kPatience))
      << program->output();
  EXPECT_TRUE(attached("Flight"));
  EXPECT_TRUE(recorder->notifications().empty());
  holders.clear();
  EXPECT_TRUE(eventually([&] { return !attached("Flight"); }, kPatience));
  const auto image = images->path() + "/Flight.img";
  EXPECT_EQ(run({"fsck.ext4", "-n", "-f", image}).status, 0);
  terminate();
  ASSERT_EQ(images->attach(image).status, 0);
  EXPECT_EQ(fs::file_size(DiskImages::realPlace("Flight") + "/in-flight"), 5u);
}

}  // namespace
}  // namespace quillmont::testing
