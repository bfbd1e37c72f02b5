#include "app/ActivityLog.h"

#include <gmock/gmock.h>

#include "tests/support/TestHost.h"

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using testing::FakeDiskImages;
using ::testing::IsEmpty;
using testing::TestHost;

class Activity : public ::testing::Test {
 protected:
  std::vector<std::string> linesOf(double seconds) {
    system.log.lines.clear();
    system.pass(seconds);
    return system.log.lines;
  }

  TestHost system;
  FakeDiskImages images{system};
  ConfigManager config{system.host()};
  std::shared_ptr<QuillmontDaemon> daemon = QuillmontDaemon::make(system.host(), config);
  ActivityLog activity{*daemon, system.log};
};

TEST_F(Activity, EachChangeIsOneLine) {
  images.attach("A").users = {"bash", "vim"};
  EXPECT_THAT(linesOf(5), ElementsAre("Disk image is in use: /Volumes/A (bash, vim)"));
  EXPECT_THAT(linesOf(10), IsEmpty());
  images.image("A").users.clear();
  EXPECT_THAT(linesOf(10), ElementsAre("Disk image is idle: /Volumes/A"));
}

TEST_F(Activity, OtherNamesAloneAreNoChange) {
  images.attach("A").users = {"bash"};
  linesOf(5);
  images.image("A").users = {"vim"};
  EXPECT_THAT(linesOf(5), IsEmpty());
}

TEST_F(Activity, ImageThatComesBackIsNew) {
  images.attach("A");
  EXPECT_THAT(linesOf(5), ElementsAre("Disk image is idle: /Volumes/A"));
  images.removeImage("/Volumes/A");
  EXPECT_THAT(linesOf(5), IsEmpty());
  images.attach("A");
  EXPECT_THAT(linesOf(5), ElementsAre("Disk image is idle: /Volumes/A"));
}

}  // namespace
}  // namespace quillmont
