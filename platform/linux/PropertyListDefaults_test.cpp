#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <random>
#include <thread>

#include "platform/linux/PropertyListDefaultsTest.h"

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::namesIn;
using testing::PropertyListDefaultsTest;
using ::testing::SizeIs;
using ::testing::StartsWith;

TEST_F(PropertyListDefaultsTest, StartThatWritesNothingLeavesNothing) {
  auto defaults = start();
  EXPECT_EQ(defaults.object("a"), std::nullopt);
  EXPECT_EQ(defaults.stringArray("a"), std::nullopt);
  EXPECT_THAT(namesIn(home_.path()), IsEmpty());
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(PropertyListDefaultsTest, FirstWriteMakesAPrivateFolderAndFile) {
  auto defaults = start();
  defaults.setBool("a", true);
  struct stat status = {};
  ASSERT_EQ(stat(folder().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0700u);
  ASSERT_EQ(stat(file().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0600u);
  EXPECT_THAT(namesIn(folder()), ElementsAre("com.example.Test.plist"));
}

TEST_F(PropertyListDefaultsTest, TypesSurviveARestart) {
  const PropertyList strings{PropertyListArray{"/a b.dmg", "/\u78c1\u76d8.dmg", ""}};
  {
    auto defaults = start();
    defaults.setDouble("real", 900.0);
    defaults.setBool("bool", false);
    defaults.setObject("integer", std::int64_t{600});
    defaults.setObject("string", "text");
    defaults.setObject("strings", strings);
  }
  auto defaults = start();
  EXPECT_EQ(defaults.object("real"), PropertyList(900.0));
  EXPECT_EQ(defaults.object("bool"), PropertyList(false));
  EXPECT_EQ(defaults.object("integer"), PropertyList(std::int64_t{600}));
  EXPECT_EQ(defaults.object("string"), PropertyList("text"));
  EXPECT_EQ(defaults.object("strings"), strings);
  EXPECT_EQ(defaults.stringArray("strings"),
            (std::vector<std::string>{"/a b.dmg", "/\u78c1\u76d8.dmg", ""}));
}

TEST_F(PropertyListDefaultsTest, StringArrayIsNothingForAnyOtherValue) {
  auto defaults = start();
  defaults.setObject("mixed", PropertyListArray{"a", std::int64_t{1}});
  defaults.setObject("string", "a");
  defaults.setObject("empty", PropertyListArray{});
  EXPECT_EQ(defaults.stringArray("mixed"), std::nullopt);
  EXPECT_EQ(defaults.stringArray("string"), std::nullopt);
  EXPECT_EQ(defaults.stringArray("empty"), std::vector<std::string>());
}

TEST_F(PropertyListDefaultsTest, EachWriteReachesTheFileAndKeepsForeignKeys) {
  place(*lists_.xml(PropertyListDictionary{{"foreign", std::int64_t{1}}, {"a", "old"}}));
  auto defaults = start();
  defaults.setObject("a", "new");
  EXPECT_EQ(stored(),
            PropertyList(PropertyListDictionary{{"foreign", std::int64_t{1}}, {"a", "new"}}));
  defaults.setBool("b", true);
  EXPECT_EQ(stored(), PropertyList(PropertyListDictionary{
                          {"foreign", std::int64_t{1}}, {"a", "new"}, {"b", true}}));
}

TEST_F(PropertyListDefaultsTest, UnchangedValueIsWrittenToo) {
  auto defaults = start();
  defaults.setBool("a", true);
  ASSERT_EQ(unlink(file().c_str()), 0);
  defaults.setBool("a", true);
  EXPECT_EQ(stored(), PropertyList(PropertyListDictionary{{"a", true}}));
}

TEST_F(PropertyListDefaultsTest, OfAKeyThatStandsTwiceTheLastOneIsReadAndReplaced) {
  place(*lists_.xml(PropertyListDictionary{{"a", "first"}, {"a", "last"}}));
  auto defaults = start();
  EXPECT_EQ(defaults.object("a"), PropertyList("last"));
  defaults.setObject("a", "new");
  EXPECT_EQ(start().object("a"), PropertyList("new"));
}

TEST_F(PropertyListDefaultsTest, ChangesOfTheFileAreNotSeenAfterTheStart) {
  auto defaults = start();
  place(*lists_.xml(PropertyListDictionary{{"a", true}}));
  EXPECT_EQ(defaults.object("a"), std::nullopt);
}

TEST_F(PropertyListDefaultsTest, FailedWriteIsOneLogLineAndStaysInMemory) {
  ASSERT_TRUE(replaceFile(folder(), "in the way"));
  auto defaults = start();
  EXPECT_THAT(log_.lines(), IsEmpty());
  defaults.setBool("a", true);
  EXPECT_THAT(log_.lines(), ElementsAre(StartsWith("Failed to write settings: cannot create ")));
  EXPECT_EQ(defaults.object("a"), PropertyList(true));
  ASSERT_EQ(unlink(folder().c_str()), 0);
  defaults.setBool("b", true);
  EXPECT_EQ(stored(), PropertyList(PropertyListDictionary{{"a", true}, {"b", true}}));
  EXPECT_THAT(log_.lines(), SizeIs(1));
}

TEST_F(PropertyListDefaultsTest, TextThatTheFileCannotCarryIsAFailedWriteAndKeepsTheOldFile) {
  auto defaults = start();
  defaults.setBool("a", true);
  defaults.setObject("b", std::string("\xFF"));
  EXPECT_THAT(log_.lines(), ElementsAre(StartsWith("Failed to write settings: ")));
  EXPECT_EQ(stored(), PropertyList(PropertyListDictionary{{"a", true}}));
  EXPECT_EQ(defaults.object("b"), PropertyList("\xFF"));
}

TEST_F(PropertyListDefaultsTest, RemovingTheDomainForgetsMemoryAndFile) {
  auto defaults = start();
  defaults.setBool("a", true);
  ASSERT_TRUE(replaceFile(file() + ".new", "leftover"));
  defaults.removePersistentDomain(kDomain);
  EXPECT_EQ(defaults.object("a"), std::nullopt);
  EXPECT_THAT(namesIn(home_.path()), IsEmpty());
  defaults.setBool("b", true);
  EXPECT_EQ(stored(), PropertyList(PropertyListDictionary{{"b", true}}));
}

TEST_F(PropertyListDefaultsTest, RemovingTheDomainLeavesWhatElseIsInTheFolder) {
  auto defaults = start();
  defaults.setBool("a", true);
  ASSERT_TRUE(replaceFile(folder() + "/other", "kept"));
  defaults.removePersistentDomain(kDomain);
  EXPECT_THAT(namesIn(folder()), ElementsAre("other"));
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(PropertyListDefaultsTest, RemovingADomainThatWasNeverWrittenIsSilent) {
  auto defaults = start();
  defaults.removePersistentDomain(kDomain);
  EXPECT_THAT(log_.lines(), IsEmpty());
  EXPECT_THAT(namesIn(home_.path()), IsEmpty());
}

TEST_F(PropertyListDefaultsTest, RemovingAnotherDomainChangesNothing) {
  auto defaults = start();
  defaults.setBool("a", true);
  defaults.removePersistentDomain("com.example.Other");
  EXPECT_EQ(defaults.object("a"), PropertyList(true));
  EXPECT_EQ(stored(), PropertyList(PropertyListDictionary{{"a", true}}));
}

TEST_F(PropertyListDefaultsTest, FailedRemovalIsLogged) {
  auto defaults = start();
  ASSERT_TRUE(createFolders(file(), 0700));
  defaults.removePersistentDomain(kDomain);
  EXPECT_THAT(log_.lines(), ElementsAre(StartsWith("Failed to remove settings: " + file())));
}

TEST_F(PropertyListDefaultsTest, ThreadsWriteAndReadSideBySide) {
  auto defaults = start();
  std::vector<std::thread> threads;
  for (int number = 0; number < 4; ++number) {
    threads.emplace_back([&defaults, number] {
      const auto key = "key" + std::to_string(number);
      for (std::int64_t i = 0; i < 10; ++i) {
        defaults.setObject(key, i);
        EXPECT_EQ(defaults.object(key), PropertyList(i));
        defaults.stringArray("key0");
      }
    });
  }
  for (auto& thread : threads) thread.join();
  const auto list = stored();
  ASSERT_TRUE(list.dictionary());
  EXPECT_EQ(list.dictionary()->size(), 4u);
  for (const auto& [key, value] : *list.dictionary())
    EXPECT_EQ(value, PropertyList(std::int64_t{9}));
  EXPECT_THAT(log_.lines(), IsEmpty());
}

/// In a child process: sets one number after the other and tells each that was set, until it is
/// killed.
[[noreturn]] void writeNumbers(PropertyListDefaults& defaults, std::int64_t next, int out) {
  for (;; ++next) {
    defaults.setObject("number", next);
    if (write(out, &next, sizeof next) != sizeof next) _exit(1);
  }
}

TEST_F(PropertyListDefaultsTest, KillAtAnyMomentLosesNoMoreThanTheLastWrite) {
  start().setObject("other", "kept");
  std::mt19937 random(20240607);
  std::int64_t told = 0;
  for (int round = 0; told < 200; ++round) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    auto defaults = start();
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      close(ends[0]);
      writeNumbers(defaults, told + 1, ends[1]);
    }
    close(ends[1]);
    // After some writes, somewhere within the next one.
    for (auto writes = 1 + random() % 15; writes > 0; --writes) {
      ASSERT_EQ(read(ends[0], &told, sizeof told), static_cast<ssize_t>(sizeof told));
    }
    const timespec pause = {0, static_cast<long>(random() % 1'000'000)};
    nanosleep(&pause, nullptr);
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    while (read(ends[0], &told, sizeof told) > 0) continue;
    close(ends[0]);

    const auto list = stored();
    ASSERT_TRUE(list.find("number")) << "round " << round;
    const auto* number = list.find("number")->as<std::int64_t>();
    ASSERT_TRUE(number);
    EXPECT_TRUE(*number == told || *number == told + 1) << *number << " after " << told;
    EXPECT_EQ(*list.find("other"), PropertyList("kept"));
  }
  // What the last kill may have left is gone with the next write.
  start().setBool("end", true);
  EXPECT_THAT(namesIn(folder()), ElementsAre("com.example.Test.plist"));
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(PropertyListDefaultsTest, FullDiskKeepsTheOldFile) {
  std::string skipped;
  // A thread's own mount namespace ends with it, and the disk too.
  std::thread([&] {
    ASSERT_TRUE(createFolders(folder(), 0700));
    if (unshare(CLONE_NEWNS) != 0 ||
        mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        mount("tmpfs", folder().c_str(), "tmpfs", 0, "size=16k") != 0) {
      skipped = std::string("cannot mount a small disk: ") + std::strerror(errno);
      return;
    }
    auto defaults = start();
    defaults.setObject("a", "fits");
    defaults.setObject("b", std::string(100'000, 'x'));
    EXPECT_THAT(log_.lines(), ElementsAre(HasSubstr("No space left on device")));
    EXPECT_EQ(stored(), PropertyList(PropertyListDictionary{{"a", "fits"}}));
    EXPECT_THAT(namesIn(folder()), SizeIs(1));
    defaults.setObject("b", "fits again");
    EXPECT_EQ(start().object("b"), PropertyList("fits again"));
  }).join();
  if (!skipped.empty()) GTEST_SKIP() << skipped;
}

}  // namespace
}  // namespace quillmont
