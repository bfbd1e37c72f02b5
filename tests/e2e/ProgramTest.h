// The real program, from its start to its end, without a desktop.
#pragma once

#include <gmock/gmock.h>
#include <signal.h>

#include <filesystem>
#include <memory>
#include <string>

#include "tests/support/DiskImages.h"
#include "tests/support/NotificationRecorder.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/Session.h"

namespace quillmont::testing {

/// How often `text` stands in `output`.
inline int countOf(const std::string& text, const std::string& output) {
  int count = 0;
  for (auto at = output.find(text); at != output.npos; at = output.find(text, at + 1)) ++count;
  return count;
}

class ProgramTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!PrivateBus::available()) GTEST_SKIP() << "this machine has no message bus daemon";
    bus = std::make_unique<PrivateBus>();
    recorder = std::make_unique<NotificationRecorder>(bus->address());
    session = std::make_unique<Session>(bus->address());
  }

  void start() {
    if (!std::filesystem::exists(session->settingsFile())) session->store({});
    program = session->start();
  }

  std::string output() { return program->output(); }

  /// Ends the program in the ordinary way and answers its status.
  int terminate() {
    program->signal(SIGTERM);
    return program->waitForExit(std::chrono::seconds(10));
  }

  std::unique_ptr<PrivateBus> bus;
  std::unique_ptr<NotificationRecorder> recorder;
  std::unique_ptr<Session> session;
  std::unique_ptr<Program> program;
};

/// With images that the built disk-image tool attaches in the session's environment; the session's
/// own copy of the tool, which a test may have replaced, is the program's alone.
class ProgramWithImages : public ProgramTest {
 protected:
  void SetUp() override {
    if (const auto reason = DiskImages::whyImpossible(); !reason.empty()) GTEST_SKIP() << reason;
    ProgramTest::SetUp();
    if (IsSkipped()) return;
    images = std::make_unique<DiskImages>(session->environment());
  }

  std::string make(const std::string& label) { return images->makeExt4(label + ".img", label); }

  /// Attaches an image of the session; the presented mount point.
  std::string attachImage(const std::string& image, const std::string& label) {
    const auto outcome = images->attach(image);
    EXPECT_EQ(outcome.status, 0) << outcome.standardError;
    return "/Volumes/" + label;
  }

  std::string attach(const std::string& label) { return attachImage(make(label), label); }

  /// Whether the disk-image tool still lists the volume.
  bool listed(const std::string& mountPoint) {
    return images->tool({"info", "-plist"})
               .standardOutput.find("<string>" + mountPoint + "</string>") != std::string::npos;
  }

  bool waitUntilIdle(const std::string& mountPoint,
                     std::chrono::milliseconds limit = std::chrono::seconds(7), int count = 1) {
    return program->waitForOutput("Disk image is idle: " + mountPoint + "\n", limit, count);
  }

  bool waitUntilEjected(const std::string& mountPoint,
                        std::chrono::milliseconds limit = std::chrono::seconds(12)) {
    return program->waitForOutput(
        "Successfully ejected and verified detached: " + mountPoint + "\n", limit);
  }

  std::unique_ptr<DiskImages> images;
};

}  // namespace quillmont::testing
