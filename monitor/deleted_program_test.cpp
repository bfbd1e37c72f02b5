// A program that finds itself deleted takes away what it has left, and ends.

#include <gmock/gmock.h>

#include "tests/support/MonitorTest.h"

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::OpenMonitor;

class DeletedProgram : public testing::MonitorTest {
 protected:
  void expectCleanUp(const std::string& logLine) {
    system.processes.tools["/bin/bash"] = [this](const Command&) {
      EXPECT_THAT(system.defaults.removedDomains, IsEmpty()) << "the login item goes first";
      return testing::ToolRun{};
    };
    system.files.files["/Users/user/Library/LaunchAgents/com.norwaldex.quillmont.plist"] = "agent";
    monitor_ = QuillmontDaemon::make<OpenMonitor>(system.host(), config);
    system.queues.runTasks();
    EXPECT_EQ(system.application.terminations, 0) << "that is for the main thread";
    system.runLoop.runTasks();
    EXPECT_THAT(system.log.lines, ElementsAre(logLine));
    EXPECT_EQ(system.processes.launchesOf("/bin/bash").size(), 1u);
    EXPECT_THAT(system.files.files, IsEmpty());
    EXPECT_THAT(system.defaults.removedDomains, ElementsAre("com.norwaldex.Quillmont"));
    EXPECT_EQ(system.application.terminations, 1);
    EXPECT_EQ(images.scans, 0);
  }
};

TEST_F(DeletedProgram, MissingBundleCleansUpAndTerminates) {
  system.files.folders.clear();
  expectCleanUp(
      "Quillmont has been moved to Trash or deleted (isTrash: false, exists: false). Cleaning up "
      "LaunchAgent and exiting...");
}

TEST_F(DeletedProgram, BundleInTheTrashCleansUpAndTerminates) {
  system.bundle.bundlePath = "/Users/user/.Trash/Quillmont.app";
  system.files.folders = {system.bundle.bundlePath};
  expectCleanUp(
      "Quillmont has been moved to Trash or deleted (isTrash: true, exists: true). Cleaning up "
      "LaunchAgent and exiting...");
}

TEST_F(DeletedProgram, TrashOfAnotherVolumeCountsToo) {
  system.bundle.bundlePath = "/Volumes/External/.Trash/501/Quillmont.app";
  expectCleanUp(
      "Quillmont has been moved to Trash or deleted (isTrash: true, exists: false). Cleaning up "
      "LaunchAgent and exiting...");
}

TEST_F(DeletedProgram, FolderWhoseNameOnlyEndsInTrashDoesNotCount) {
  system.bundle.bundlePath = "/Users/user/my.Trash/Quillmont.app";
  system.files.folders = {system.bundle.bundlePath};
  start();
  EXPECT_EQ(images.scans, 1);
}

TEST_F(DeletedProgram, ATerminationInTheMiddleFinishesTheCleanUp) {
  system.files.folders.clear();
  const std::string agent = "/Users/user/Library/LaunchAgents/com.norwaldex.quillmont.plist";
  system.files.files[agent] = "agent";
  bool wasFinished = false;
  // Unloading the login item ends the program that it has started.
  system.processes.tools["/bin/bash"] = [&](const Command&) {
    monitor_->finishCleanUp();
    wasFinished = system.files.files.empty() && system.defaults.removedDomains.size() == 1;
    return testing::ToolRun{};
  };
  start();
  EXPECT_TRUE(wasFinished);
}

TEST_F(DeletedProgram, ATerminationOfAProgramThatIsStillThereDeletesNothing) {
  const std::string agent = "/Users/user/Library/LaunchAgents/com.norwaldex.quillmont.plist";
  system.files.files[agent] = "agent";
  start();
  monitor_->finishCleanUp();
  EXPECT_EQ(system.files.files.count(agent), 1u);
  EXPECT_THAT(system.defaults.removedDomains, IsEmpty());
}

TEST_F(DeletedProgram, EveryFurtherCycleRepeatsTheCleanUp) {
  system.files.folders.clear();
  start().tick();
  system.settle();
  EXPECT_EQ(system.log.lines.size(), 2u);
  EXPECT_EQ(system.defaults.removedDomains.size(), 2u);
}

}  // namespace
}  // namespace quillmont
