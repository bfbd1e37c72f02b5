#include <gmock/gmock.h>

#include "tests/support/TestHost.h"

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::OpenMonitor;
using testing::TestHost;
using testing::ToolRun;

class InUseCheck : public ::testing::Test {
 protected:
  InUse checkOutput(const std::string& output, int status = 0) {
    system.processes.tools["/usr/sbin/lsof"] = [=](const Command&) {
      return ToolRun{.output = output, .status = status};
    };
    return monitor->checkInUse("/Volumes/A", "999");
  }

  TestHost system;
  ConfigManager config{system.host()};
  std::shared_ptr<OpenMonitor> monitor = QuillmontDaemon::make<OpenMonitor>(system.host(), config);
};

TEST_F(InUseCheck, AsksTheOpenFilesToolAboutTheMountPoint) {
  checkOutput("");
  ASSERT_EQ(system.processes.launches.size(), 1u);
  const auto& command = system.processes.launches.front();
  EXPECT_EQ(command.path, "/usr/sbin/lsof");
  EXPECT_THAT(command.arguments, ElementsAre("-F", "cpn", "/Volumes/A"));
  EXPECT_EQ(command.standardOutput, ChildOutput::pipe);
  EXPECT_EQ(command.standardError, ChildOutput::pipe);
}

TEST_F(InUseCheck, ProcessWithOpenDirectoryMakesTheImageBusy) {
  const auto use = checkOutput("p123\ncFinder\nfcwd\nn/Volumes/A/x\n");
  EXPECT_TRUE(use.inUse);
  EXPECT_THAT(use.activeProcesses, ElementsAre("Finder"));
}

TEST_F(InUseCheck, OwnProcessAloneLeavesTheImageFree) {
  const auto use = checkOutput("p999\ncQuillmont\nfcwd\nn/Volumes/A\n");
  EXPECT_FALSE(use.inUse);
  EXPECT_THAT(use.activeProcesses, IsEmpty());
}

TEST_F(InUseCheck, EmptyOutputMeansFree) {
  EXPECT_FALSE(checkOutput("", 1).inUse);
  EXPECT_THAT(system.log.lines, IsEmpty());
}

TEST_F(InUseCheck, ExitStatusIsNotLookedAt) {
  EXPECT_TRUE(checkOutput("p1\ncbash\n", 1).inUse);
}

TEST_F(InUseCheck, OutputThatIsNotUtf8MeansFreeWithoutALogLine) {
  EXPECT_FALSE(checkOutput("p1\ncbash\nn\xFF\n").inUse);
  EXPECT_THAT(system.log.lines, IsEmpty());
}

TEST_F(InUseCheck, ToolThatCannotBeStartedMeansFreeAndIsLogged) {
  const auto use = monitor->checkInUse("/Volumes/A", "999");
  EXPECT_FALSE(use.inUse);
  EXPECT_THAT(use.activeProcesses, IsEmpty());
  EXPECT_THAT(system.log.lines,
              ElementsAre("Error checking mount point use: No such file or directory"));
}

}  // namespace
}  // namespace quillmont
