#include <gmock/gmock.h>

#include "tests/support/TestHost.h"

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using testing::FakeDiskImages;
using ::testing::IsEmpty;
using testing::OpenMonitor;
using testing::TestHost;
using testing::ToolRun;

class Scan : public ::testing::Test {
 protected:
  void diskImageToolPrints(const std::string& output, int status = 0) {
    system.processes.tools["/usr/bin/hdiutil"] = [=](const Command&) {
      return ToolRun{.output = output, .status = status};
    };
  }

  TestHost system;
  FakeDiskImages images{system};
  ConfigManager config{system.host()};
  std::shared_ptr<OpenMonitor> monitor = QuillmontDaemon::make<OpenMonitor>(system.host(), config);
};

TEST_F(Scan, AsksTheDiskImageToolAndReadsItsAnswerAfterItsEnd) {
  images.attach("Backup");
  system.processes.launches.clear();
  EXPECT_THAT(monitor->scanMountedImages(),
              ElementsAre(ScanEntry{"/Users/user/Backup.dmg", "/Volumes/Backup", "/dev/disk4s1"}));
  ASSERT_EQ(system.processes.launches.size(), 1u);
  const auto& command = system.processes.launches.front();
  EXPECT_EQ(command.path, "/usr/bin/hdiutil");
  EXPECT_THAT(command.arguments, ElementsAre("info", "-plist"));
  EXPECT_EQ(command.standardOutput, ChildOutput::pipe);
  EXPECT_EQ(command.standardError, ChildOutput::inherit);
  EXPECT_THAT(system.log.lines, IsEmpty());
}

TEST_F(Scan, EmptyOutputYieldsNothingAndNoLogLine) {
  diskImageToolPrints("");
  EXPECT_THAT(monitor->scanMountedImages(), IsEmpty());
  EXPECT_THAT(system.log.lines, IsEmpty());
}

TEST_F(Scan, ToolThatCannotBeStartedIsLogged) {
  system.processes.tools.erase("/usr/bin/hdiutil");
  EXPECT_THAT(monitor->scanMountedImages(), IsEmpty());
  EXPECT_THAT(system.log.lines,
              ElementsAre("Error scanning mounted images: No such file or directory"));
}

TEST_F(Scan, GarbageIsLogged) {
  diskImageToolPrints("garbage");
  EXPECT_THAT(monitor->scanMountedImages(), IsEmpty());
  EXPECT_THAT(system.log.lines, ElementsAre("Error scanning mounted images: not a property list"));
}

TEST_F(Scan, ListOfUnexpectedShapeYieldsNothingAndNoLogLine) {
  diskImageToolPrints(*system.propertyLists.xml(PropertyList("images")));
  EXPECT_THAT(monitor->scanMountedImages(), IsEmpty());
  EXPECT_THAT(system.log.lines, IsEmpty());
}

TEST_F(Scan, ExitStatusOfTheToolIsNotLookedAt) {
  images.attach("Backup");
  auto& tool = system.processes.tools["/usr/bin/hdiutil"];
  tool = [honest = tool](const Command& command) {
    auto result = honest(command);
    result.status = 1;
    return result;
  };
  EXPECT_EQ(monitor->scanMountedImages().size(), 1u);
}

TEST_F(Scan, MountTimeIsTheModificationDateOfTheNode) {
  const auto now = system.clock.now();
  system.files.nodes["/dev/disk4s1"] = {.modificationDate = now - testing::seconds(60),
                                        .creationDate = now - testing::seconds(90)};
  EXPECT_EQ(monitor->getMountTime("/dev/disk4s1"), now - testing::seconds(60));
}

TEST_F(Scan, NodeWithoutModificationDateGivesItsCreationDate) {
  const auto created = system.clock.now() - testing::seconds(90);
  system.files.nodes["/dev/disk4s1"] = {.modificationDate = std::nullopt, .creationDate = created};
  EXPECT_EQ(monitor->getMountTime("/dev/disk4s1"), created);
}

TEST_F(Scan, NodeWithoutAnyDateGivesTheCurrentTime) {
  system.files.nodes["/dev/disk4s1"] = {};
  EXPECT_EQ(monitor->getMountTime("/dev/disk4s1"), system.clock.now());
  EXPECT_THAT(system.log.lines, IsEmpty());
}

TEST_F(Scan, MissingNodeGivesTheCurrentTimeAndOneLogLine) {
  EXPECT_EQ(monitor->getMountTime("/dev/disk9"), system.clock.now());
  EXPECT_THAT(system.log.lines, ElementsAre("Error getting creation date for devEntry "
                                            "/dev/disk9: No such file or directory"));
}

}  // namespace
}  // namespace quillmont
