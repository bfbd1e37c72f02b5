#include "platform/linux/LinuxWorkspace.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/file.h>
#include <unistd.h>

#include <filesystem>
#include <string_view>

#include "platform/Host.h"
#include "platform/linux/user_folders.h"
#include "tests/support/FakeSystem.h"
#include "tests/support/Program.h"
#include "tests/support/forked.h"

namespace quillmont {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

Mount mountAt(const std::string& mountPoint, int id = 1) {
  Mount result;
  result.id = id;
  result.mountPoint = mountPoint;
  result.source = "/dev/loop0";
  return result;
}

struct WorkspaceParts {
  EventLoop loop;
  testing::RecordingLog log;
  int alone = 0;
  LinuxWorkspace workspace{loop, log, [this] { ++alone; }};
};

TEST(LinuxWorkspace, VolumesAreWhatTheDesktopMountsForThisUser) {
  const auto volumes = mountedVolumes(
      {mountAt("/media/ann/Disk 1", 1), mountAt("/run/media/ann/磁盘", 2), mountAt("/Volumes/x", 3),
       mountAt("/media/bob/Disk", 4), mountAt("/media/ann", 5), mountAt("/media/annette/x", 6),
       mountAt("/snap/core/1", 7), mountAt("/var/lib/docker/overlay2/media/ann/x", 8)},
      "ann");
  EXPECT_THAT(volumes, ElementsAre(MountedVolume(1, "/media/ann/Disk 1", "/dev/loop0"),
                                   MountedVolume(2, "/run/media/ann/磁盘", "/dev/loop0"),
                                   MountedVolume(3, "/Volumes/x", "/dev/loop0")));
}

/// In a mount table of its own: an empty /media with two places to mount at.
void prepareMedia(const std::string& folder) {
  ASSERT_TRUE(testing::enterOwnMountTable());
  ASSERT_EQ(mount("none", "/media", "tmpfs", 0, nullptr), 0);
  fs::create_directories(folder + "/one");
  fs::create_directories(folder + "/two");
  fs::create_directories("/media/elsewhere");
}

void mountTmpfs(const std::string& path) {
  ASSERT_EQ(mount("none", path.c_str(), "tmpfs", 0, nullptr), 0) << path;
}

TEST(LinuxWorkspace, TellsVolumesThatComeAndGoAndNothingElse) {
  if (!testing::canMount()) GTEST_SKIP() << "no mount table of its own may be had here";
  EXPECT_EQ(
      testing::forked([] {
        const auto folder = "/media/" + userName();
        prepareMedia(folder);
        mountTmpfs(folder + "/one");
        WorkspaceParts w;
        std::string events;
        w.workspace.observeVolumes(VolumeEvent::didMount, [&](VolumeEvent) { events += '+'; });
        w.workspace.observeVolumes(VolumeEvent::didUnmount, [&](VolumeEvent) { events += '-'; });
        w.loop.dispatchPending();
        EXPECT_EQ(events, "");  // what was there before is no news
        mountTmpfs(folder + "/two");
        w.loop.dispatchPending();
        EXPECT_EQ(events, "+");
        mountTmpfs("/media/elsewhere");
        w.loop.dispatchPending();
        EXPECT_EQ(events, "+");
        ASSERT_EQ(umount((folder + "/one").c_str()), 0);
        w.loop.dispatchPending();
        EXPECT_EQ(events, "+-");
        ASSERT_EQ(umount((folder + "/two").c_str()), 0);
        mountTmpfs(folder + "/one");
        w.loop.dispatchPending();
        EXPECT_EQ(events, "+--+");  // both in one turn
        EXPECT_THAT(w.log.lines, IsEmpty());
      }),
      0);
}

TEST(LinuxWorkspace, AnObserverMayAddAnother) {
  if (!testing::canMount()) GTEST_SKIP() << "no mount table of its own may be had here";
  EXPECT_EQ(testing::forked([] {
              const auto folder = "/media/" + userName();
              prepareMedia(folder);
              WorkspaceParts w;
              int added = 0;
              w.workspace.observeVolumes(VolumeEvent::didMount, [&](VolumeEvent event) {
                w.workspace.observeVolumes(event, [&](VolumeEvent) { ++added; });
              });
              mountTmpfs(folder + "/one");
              w.loop.dispatchPending();
              EXPECT_EQ(added, 0);
              mountTmpfs(folder + "/two");
              w.loop.dispatchPending();
              EXPECT_EQ(added, 1);
            }),
            0);
}

/// In a child, whose runtime folder is then in `base`.
std::string useRuntimeFolder(const std::string& base) {
  setenv("XDG_RUNTIME_DIR", base.c_str(), 1);
  const auto folder = runtimeFolder();
  return folder ? *folder : "";
}

TEST(LinuxWorkspace, TheOnlyInstanceIsToldOnceThatItIsAlone) {
  const testing::TemporaryFolder base;
  EXPECT_EQ(
      testing::forked([&] {
        ASSERT_NE(useRuntimeFolder(base.path()), "");
        WorkspaceParts w;
        EXPECT_THAT(w.workspace.runningApplications(kBundleIdentifier), ElementsAre(getpid()));
        EXPECT_THAT(w.workspace.runningApplications(kBundleIdentifier), ElementsAre(getpid()));
        EXPECT_EQ(w.alone, 1);
      }),
      0);
}

TEST(LinuxWorkspace, ASecondInstanceIsNotTold) {
  const testing::TemporaryFolder base;
  EXPECT_EQ(testing::forked([&] {
              const auto folder = useRuntimeFolder(base.path());
              const Descriptor other(
                  open((folder + "/4000001").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
              ASSERT_EQ(flock(other.get(), LOCK_EX), 0);
              WorkspaceParts w;
              EXPECT_THAT(w.workspace.runningApplications(kBundleIdentifier),
                          ElementsAre(4000001, getpid()));
              EXPECT_EQ(w.alone, 0);
            }),
            0);
}

TEST(LinuxWorkspace, KnowsNoOtherApplications) {
  WorkspaceParts w;
  EXPECT_THAT(w.workspace.runningApplications("com.example.Other"), IsEmpty());
  EXPECT_EQ(w.alone, 0);
}

TEST(LinuxWorkspace, WithoutARuntimeFolderItKnowsOnlyItself) {
  const testing::TemporaryFolder base;
  EXPECT_EQ(testing::forked([&] {
              const auto folder = useRuntimeFolder(base.path());
              fs::permissions(folder, fs::perms::all);
              WorkspaceParts w;
              EXPECT_THAT(w.workspace.runningApplications(kBundleIdentifier),
                          ElementsAre(getpid()));
              EXPECT_THAT(w.log.lines, SizeIs(1));
              EXPECT_EQ(w.alone, 0);
            }),
            0);
}

}  // namespace
}  // namespace quillmont
