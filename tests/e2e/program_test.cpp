// The program from its start to its end, on real disk images.

#include <filesystem>
#include <thread>

#include "tests/e2e/ProgramTest.h"

namespace quillmont::testing {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::SizeIs;

constexpr char kSecondInstance[] =
    "Another instance of Quillmont is already running. Exiting this instance.";

TEST_F(ProgramWithImages, ImageAppearsWithinASecondOfItsMount) {
  const auto image = make("Appears");
  const auto started = std::chrono::steady_clock::now();
  start();
  ASSERT_TRUE(eventually(
      [&] {
        return fs::exists(session->folder() +
                          "/runtime/"
                          "com.norwaldex.Quillmont");
      },
      5s));
  std::this_thread::sleep_for(500ms);  // the first cycle, and no timer due for four seconds
  const auto mountPoint = attachImage(image, "Appears");
  EXPECT_TRUE(waitUntilIdle(mountPoint, 1s)) << output();
  EXPECT_LT(std::chrono::steady_clock::now() - started, 4500ms) << "the timer may have been it";
  EXPECT_EQ(terminate(), 0);
}

TEST_F(ProgramWithImages, UsedThenIdleThenEjectedVerifiedAndAnnounced) {
  session->store({{"timeoutSeconds", 2.0}});
  const auto mountPoint = attach("假日 照片");
  Program holder({"tail", "-f", DiskImages::realPlace("假日 照片") + "/note.txt"});
  start();
  ASSERT_TRUE(program->waitForOutput("Disk image is in use: " + mountPoint + " (tail)\n", 5s))
      << output();
  std::this_thread::sleep_for(4s);
  EXPECT_TRUE(listed(mountPoint)) << "longer than the timeout, but in use";
  holder.signal(SIGKILL);
  holder.waitForExit(1s);
  EXPECT_TRUE(waitUntilIdle(mountPoint)) << output();
  ASSERT_TRUE(waitUntilEjected(mountPoint)) << output();
  EXPECT_FALSE(listed(mountPoint));
  ASSERT_TRUE(recorder->waitForNotifications(1, 3s));
  const auto shown = recorder->notifications().front();
  EXPECT_EQ(shown.title, "磁盘已安全推出");
  EXPECT_EQ(shown.body, "DMG 映像 \"假日 照片\" 因空闲已自动推出。");
  EXPECT_EQ(terminate(), 0);
}

TEST_F(ProgramWithImages, FolderOfItsStartIsNotHeld) {
  session->store({{"timeoutSeconds", 1.0}});
  const auto mountPoint = attach("Started here");
  program = std::make_unique<Program>(
      std::vector<std::string>{"sh", "-c", "cd \"$1\" && exec \"$0\"",
                               session->bundle() + "/Contents/MacOS/Quillmont",
                               DiskImages::realPlace("Started here")},
      session->environment());
  EXPECT_TRUE(waitUntilEjected(mountPoint)) << output();
  EXPECT_FALSE(listed(mountPoint));
  EXPECT_EQ(terminate(), 0);
}

TEST_F(ProgramWithImages, ExcludedImageIsLeftAlone) {
  const auto image = make("Kept");
  session->store({{"timeoutSeconds", 1.0}, {"excludeList", PropertyListArray{image}}});
  const auto kept = attachImage(image, "Kept");
  const auto other = attach("Other");
  start();
  EXPECT_TRUE(waitUntilEjected(other)) << output();
  std::this_thread::sleep_for(6s);
  EXPECT_TRUE(listed(kept));
  EXPECT_EQ(terminate(), 0);
}

TEST_F(ProgramWithImages, NothingIsEjectedWhileSwitchedOff) {
  session->store({{"timeoutSeconds", 1.0}, {"isEnabled", false}});
  const auto mountPoint = attach("Off");
  start();
  EXPECT_TRUE(waitUntilIdle(mountPoint)) << output();
  std::this_thread::sleep_for(6s);
  EXPECT_TRUE(listed(mountPoint));
  EXPECT_EQ(terminate(), 0);
}

TEST_F(ProgramWithImages, TwoImagesAreEjectedAtOnce) {
  session->store({{"timeoutSeconds", 1.0}});
  const auto one = attach("One");
  const auto two = attach("Two");
  start();
  EXPECT_TRUE(waitUntilEjected(one)) << output();
  EXPECT_TRUE(waitUntilEjected(two)) << output();
  EXPECT_TRUE(recorder->waitForNotifications(2, 3s));
  EXPECT_EQ(terminate(), 0);
}

TEST_F(ProgramWithImages, ImageDetachedBehindItsBackIsForgottenAndFoundAgain) {
  const auto image = make("Behind");
  const auto mountPoint = attachImage(image, "Behind");
  start();
  ASSERT_TRUE(waitUntilIdle(mountPoint)) << output();
  ASSERT_EQ(images->detach(mountPoint).status, 0);
  std::this_thread::sleep_for(500ms);
  attachImage(image, "Behind");
  EXPECT_TRUE(waitUntilIdle(mountPoint, 2s, 2)) << output();
  EXPECT_THAT(output(), Not(HasSubstr("Error")));
  EXPECT_EQ(terminate(), 0);
}

TEST_F(ProgramWithImages, DetachThatFailsIsRetriedAfterEachCycle) {
  session->store({{"timeoutSeconds", 1.0}});
  session->replaceTool("hdiutil",
                       "if [ \"$1\" = detach ] && [ $(wc -l <\"$state/tries\") -lt 2 ]; then\n"
                       "  echo >>\"$state/tries\"; exit 16\nfi\nexec \"$original\" \"$@\"\n");
  run({"touch", session->folder() + "/state-hdiutil/tries"});
  const auto mountPoint = attach("Stubborn");
  start();
  EXPECT_TRUE(waitUntilEjected(mountPoint, 25s)) << output();
  EXPECT_EQ(countOf("Failed to eject: " + mountPoint + ". Code: process termination status 16\n",
                    output()),
            2);
  EXPECT_TRUE(recorder->waitForNotifications(1, 3s));
  EXPECT_THAT(recorder->notifications(), SizeIs(1));
  EXPECT_EQ(terminate(), 0);
}

TEST_F(ProgramWithImages, ToolThatHangsForAWhileIsWaitedFor) {
  session->store({{"timeoutSeconds", 1.0}});
  session->replaceTool("hdiutil",
                       "[ -e \"$state/hung\" ] || { touch \"$state/hung\"; sleep 6; }\n"
                       "exec \"$original\" \"$@\"\n");
  const auto mountPoint = attach("Patience");
  start();
  EXPECT_TRUE(waitUntilEjected(mountPoint, 20s)) << output();
  EXPECT_EQ(terminate(), 0);
}

TEST_F(ProgramWithImages, OpenFilesToolThatHangsForAWhileIsWaitedFor) {
  session->store({{"timeoutSeconds", 1.0}});
  session->replaceTool("lsof",
                       "[ -e \"$state/hung\" ] || { touch \"$state/hung\"; sleep 6; }\n"
                       "exec \"$original\" \"$@\"\n");
  const auto mountPoint = attach("Slowly");
  start();
  EXPECT_FALSE(waitUntilEjected(mountPoint, 4s)) << "nobody knows yet whether it is in use";
  EXPECT_TRUE(waitUntilEjected(mountPoint, 15s)) << output();
  EXPECT_EQ(terminate(), 0);
}

TEST_F(ProgramWithImages, EjectionDoesNotDependOnTheNotification) {
  session->store({{"timeoutSeconds", 1.0}});
  fs::rename(session->tool("osascript"), session->tool("osascript-away"));
  const auto one = attach("Unannounced");
  start();
  EXPECT_TRUE(waitUntilEjected(one)) << output();
  fs::rename(session->tool("osascript-away"), session->tool("osascript"));
  session->replaceTool("osascript", "sleep 5\n");
  const auto two = attach("Announced late");
  EXPECT_TRUE(waitUntilEjected(two)) << output();
  EXPECT_EQ(terminate(), 0) << "and nobody waits for it";
  EXPECT_THAT(output(), Not(HasSubstr("osascript")));
}

TEST_F(ProgramWithImages, MegabytesFromTheToolsAreRead) {
  session->store({{"timeoutSeconds", 1.0}});
  session->replaceTool(
      "hdiutil",
      "\"$original\" \"$@\"; status=$?\n"
      "[ \"$1\" = info ] && { printf '<!--'; head -c 1048576 /dev/zero | tr '\\0' x;"
      " printf -- '-->\\n'; }\nhead -c 1048576 /dev/zero >&2\nexit $status\n");
  session->replaceTool("lsof",
                       "for n in {1..65536}; do echo n/Volumes/Loud/$n; done\n"
                       "head -c 1048576 /dev/zero >&2\nexit 1\n");
  const auto mountPoint = attach("Loud");
  start();
  EXPECT_TRUE(waitUntilEjected(mountPoint, 20s));
  EXPECT_EQ(terminate(), 0);
}

TEST_F(ProgramTest, MissingToolIsOneLineACycle) {
  fs::remove(session->tool("hdiutil"));
  start();
  EXPECT_TRUE(
      program->waitForOutput("Error scanning mounted images: No such file or directory\n", 12s, 2))
      << output();
  EXPECT_EQ(terminate(), 0);
}

TEST_F(ProgramTest, GarbageFromTheToolIsOneLineACycle) {
  session->replaceTool("hdiutil", "echo garbage\n");
  start();
  EXPECT_TRUE(program->waitForOutput("Error scanning mounted images: ", 12s, 2)) << output();
  EXPECT_EQ(terminate(), 0);
}

TEST_F(ProgramTest, SecondInstanceLeavesWithItsOneLogLine) {
  start();
  ASSERT_TRUE(eventually(
      [&] {
        return fs::exists(session->folder() + "/runtime/com.norwaldex.Quillmont/" +
                          std::to_string(program->pid()));
      },
      5s));
  // It leaves while the toolkit is still on its way to the message bus: what that has in hand then
  // is nobody's any more.
  const auto second = session->start({{"ASAN_OPTIONS", "detect_leaks=0"}});
  EXPECT_EQ(second->waitForExit(5s), 0);
  const auto lines = second->output();
  EXPECT_THAT(lines, HasSubstr(kSecondInstance));
  EXPECT_EQ(countOf("\n", lines), 1) << lines;
  EXPECT_TRUE(program->running());
  EXPECT_EQ(terminate(), 0);
  EXPECT_THAT(output(), Not(HasSubstr(kSecondInstance)));
}

TEST_F(ProgramTest, StartAfterKilledInstanceFindsTheWayFree) {
  start();
  ASSERT_TRUE(eventually(
      [&] {
        return fs::exists(session->folder() +
                          "/runtime/"
                          "com.norwaldex.Quillmont/bin");
      },
      5s));
  program->signal(SIGKILL);
  program->waitForExit(5s);
  start();
  std::this_thread::sleep_for(500ms);
  EXPECT_TRUE(program->running()) << output();
  EXPECT_EQ(terminate(), 0);
}

TEST_F(ProgramTest, StartAloneWritesNothing) {
  session->replaceTool("hdiutil", "exit 0\n");
  program = session->start();
  std::this_thread::sleep_for(1500ms);
  EXPECT_EQ(terminate(), 0);
  EXPECT_FALSE(fs::exists(session->settingsFile()));
  EXPECT_FALSE(fs::exists(session->agentFile()));
}

TEST_F(ProgramWithImages, TerminationWaitsForAnEjectionInProgress) {
  session->store({{"timeoutSeconds", 1.0}});
  session->replaceTool("hdiutil",
                       "[ \"$1\" = detach ] && { touch \"$state/detaching\"; sleep 1; }\n"
                       "exec \"$original\" \"$@\"\n");
  const auto mountPoint = attach("Last");
  start();
  ASSERT_TRUE(
      eventually([&] { return fs::exists(session->folder() + "/state-hdiutil/detaching"); }, 10s));
  EXPECT_EQ(terminate(), 0);
  EXPECT_THAT(output(), HasSubstr("Successfully ejected and verified detached: " + mountPoint));
  EXPECT_FALSE(listed(mountPoint));
}

TEST_F(ProgramTest, DeletedProgramTakesItsLoginItemAndSettingsAlongAndEnds) {
  session->store({{"launchAtLogin", true}});
  const auto agent = PropertyListDictionary{
      {"Label", "com.norwaldex.quillmont"},
      {"ProgramArguments", PropertyListArray{session->bundle() + "/Contents/MacOS/Quillmont"}},
      {"RunAtLoad", true},
      {"KeepAlive", false}};
  session->writeAgent(agent);
  ASSERT_EQ(run({session->tool("launchctl"), "load", session->agentFile()}, session->environment())
                .status,
            0);
  ASSERT_TRUE(fs::exists(session->loginItem()));
  start();
  std::this_thread::sleep_for(500ms);
  ASSERT_TRUE(program->running()) << output();
  fs::remove_all(session->bundle());
  EXPECT_EQ(program->waitForExit(10s), 0);
  EXPECT_THAT(output(), HasSubstr("Quillmont has been moved to Trash or deleted (isTrash: false, "
                                  "exists: false). Cleaning up LaunchAgent and exiting...\n"));
  EXPECT_FALSE(fs::exists(session->loginItem()));
  EXPECT_FALSE(fs::exists(session->agentFile()));
  EXPECT_FALSE(fs::exists(session->settingsFile()));
}

}  // namespace
}  // namespace quillmont::testing
