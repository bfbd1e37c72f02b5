// Where the program leaves something, and who could get at it there.

#include <gmock/gmock.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "tests/support/Session.h"

namespace quillmont::testing {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using ::testing::IsEmpty;

constexpr const char* kSharedFolders[] = {"/tmp", "/var/tmp", "/dev/shm"};

// One image on a device that has not been touched for long, until it is detached.
constexpr char kOneImage[] = R"sh(
if [ "$1" = detach ]; then touch "$state/gone"; exit; fi
echo '<plist version="1.0"><dict><key>images</key><array>'
[ -e "$state/gone" ] || echo '<dict><key>image-path</key><string>/x.img</string>
  <key>system-entities</key><array><dict><key>dev-entry</key><string>/etc/passwd</string>
  <key>mount-point</key><string>/Volumes/X</string></dict></array></dict>'
echo '</array></dict></plist>'
)sh";

// In a mount table of its own the shared folders are empty, but for the session's own folder, and
// nothing that is made is private by the grace of the umask.
constexpr char kWithEmptySharedFolders[] = R"sh(
mount --bind "$1" /mnt || exit
for folder in /tmp /var/tmp /dev/shm; do mount -t tmpfs none $folder || exit; done
mkdir -p "$1" && mount --move /mnt "$1" || exit
umask 0
exec "$2"
)sh";

class ProgramPlaces : public ::testing::Test {
 protected:
  void SetUp() override {
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "the sanitizer reads a file that may lie in a folder which is hidden here";
#endif
    if (run({"unshare", "-m", "true"}).status != 0) {
      GTEST_SKIP() << "no mount table of one's own is to be had";
    }
    session.store({{"timeoutSeconds", 1.0}});
    session.replaceTool("hdiutil", kOneImage);
  }

  /// The program, after it has ejected an image.
  std::unique_ptr<Program> ejected() {
    auto program = std::make_unique<Program>(
        std::vector<std::string>{"unshare", "-m", "bash", "-c", kWithEmptySharedFolders, "bash",
                                 session.folder(), session.bundle() + "/Contents/MacOS/Quillmont"},
        session.environment());
    EXPECT_TRUE(program->waitForOutput("Successfully ejected and verified detached", 15s))
        << program->output();
    return program;
  }

  Session session{"", {{"TMPDIR", ""}}};
};

TEST_F(ProgramPlaces, NothingLiesInFoldersThatAreSharedWithOthers) {
  const auto program = ejected();
  const auto root = "/proc/" + std::to_string(program->pid()) + "/root";
  std::vector<std::string> found;
  for (const std::string folder : kSharedFolders) {
    for (const auto& entry : fs::directory_iterator(root + folder)) {
      const auto path = folder + "/" + entry.path().filename().string();
      if (!(session.folder() + "/").starts_with(path + "/")) found.push_back(path);
    }
  }
  EXPECT_THAT(found, IsEmpty());
  program->signal(SIGTERM);
  EXPECT_EQ(program->waitForExit(10s), 0);
}

TEST_F(ProgramPlaces, WhatLiesInTheRuntimeFolderIsForTheUserAlone) {
  const auto program = ejected();
  std::vector<std::string> open;
  int count = 0;
  for (const auto& entry : fs::recursive_directory_iterator(session.folder() + "/runtime")) {
    struct stat status = {};
    ASSERT_EQ(lstat(entry.path().c_str(), &status), 0);
    ++count;
    if (S_ISLNK(status.st_mode)) continue;
    if ((status.st_mode & 077) != 0 || status.st_uid != getuid()) open.push_back(entry.path());
  }
  EXPECT_THAT(open, IsEmpty());
  EXPECT_GE(count, 4) << "the folder, the gate, the lock and the kept tool's folder";
  program->signal(SIGTERM);
  EXPECT_EQ(program->waitForExit(10s), 0);
}

}  // namespace
}  // namespace quillmont::testing
