#include "platform/linux/PropertyListDefaults.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <random>
#include <thread>

#include "platform/Log.h"
#include "platform/linux/XmlPropertyLists.h"
#include "platform/posix/files.h"
#include "tests/support/Program.h"
#include "tests/support/SharedLog.h"

namespace quillmont {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using ::testing::SizeIs;
using ::testing::StartsWith;

const XmlPropertyLists kLists;
constexpr char kDomain[] = "com.example.Test";

std::vector<std::string> namesIn(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    names.push_back(entry.path().filename());
  }
  std::sort(names.begin(), names.end());
  return names;
}

/// Gives root's permissions up while it lives, and the folder `home` to the user it becomes.
class OrdinaryUser {
 public:
  explicit OrdinaryUser(const std::string& home) {
    if (!wasRoot_) return;
    EXPECT_EQ(chown(home.c_str(), 65534, 65534), 0);
    EXPECT_EQ(seteuid(65534), 0);
  }
  ~OrdinaryUser() {
    if (!wasRoot_) return;
    EXPECT_EQ(seteuid(0), 0);
  }
  OrdinaryUser(const OrdinaryUser&) = delete;
  OrdinaryUser& operator=(const OrdinaryUser&) = delete;

 private:
  const bool wasRoot_ = geteuid() == 0;
};

class PropertyListDefaultsTest : public ::testing::Test {
 protected:
  /// The store as a new start of the program finds it.
  PropertyListDefaults start() { return {folder(), kDomain, kLists, log_}; }

  std::string folder() const { return home_.path() + "/config"; }
  std::string file() const { return folder() + "/" + kDomain + ".plist"; }

  void place(const std::string& bytes) {
    ASSERT_TRUE(createFolders(folder(), 0700));
    ASSERT_TRUE(replaceFile(file(), bytes));
  }

  PropertyList stored() const {
    const auto bytes = readFile(file());
    if (!bytes) return "missing";
    auto list = kLists.parse(*bytes);
    return list ? *list : PropertyList("damaged");
  }

  std::vector<std::string> damagedNames() const {
    auto names = namesIn(folder());
    std::erase_if(names, [](const auto& name) { return name.find(".damaged-") == name.npos; });
    return names;
  }

  testing::SharedLog log_;
  testing::TemporaryFolder home_;
};

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
  place(*kLists.xml(PropertyListDictionary{{"foreign", std::int64_t{1}}, {"a", "old"}}));
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
  place(*kLists.xml(PropertyListDictionary{{"a", "first"}, {"a", "last"}}));
  auto defaults = start();
  EXPECT_EQ(defaults.object("a"), PropertyList("last"));
  defaults.setObject("a", "new");
  EXPECT_EQ(start().object("a"), PropertyList("new"));
}

TEST_F(PropertyListDefaultsTest, ChangesOfTheFileAreNotSeenAfterTheStart) {
  auto defaults = start();
  place(*kLists.xml(PropertyListDictionary{{"a", true}}));
  EXPECT_EQ(defaults.object("a"), std::nullopt);
}

TEST_F(PropertyListDefaultsTest, DamagedFileIsSetAsideWithOneLogLineBeforeAnyWrite) {
  const std::string damaged = "<plist><dict><key>a</key>";
  place(damaged);
  auto defaults = start();
  EXPECT_EQ(defaults.object("a"), std::nullopt);
  ASSERT_THAT(
      damagedNames(),
      ElementsAre(MatchesRegex("com\\.example\\.Test\\.plist\\.damaged-[0-9]{8}T[0-9]{6}Z")));
  EXPECT_EQ(*readFile(folder() + "/" + damagedNames()[0]), damaged);
  EXPECT_THAT(log_.lines(),
              ElementsAre(AllOf(StartsWith("Failed to read settings: " + file() + ": line 1"),
                                HasSubstr(damagedNames()[0]))));
  defaults.setBool("a", true);
  EXPECT_EQ(stored(), PropertyList(PropertyListDictionary{{"a", true}}));
  EXPECT_EQ(*readFile(folder() + "/" + damagedNames()[0]), damaged);
  EXPECT_THAT(log_.lines(), SizeIs(1));
}

TEST_F(PropertyListDefaultsTest, EmptyFileAndListThatIsNoDictionaryAreSetAside) {
  for (const std::string& bytes : {std::string(), *kLists.xml(PropertyListArray{"a"}),
                                   std::string("bplist00"), std::string("\0", 1)}) {
    place(bytes);
    start();
    EXPECT_EQ(stored(), PropertyList("missing"));
  }
  EXPECT_THAT(log_.lines(), SizeIs(4));
}

TEST_F(PropertyListDefaultsTest, DamagedFilesOfOneSecondAllKeepTheirContents) {
  for (int i = 0; i < 5; ++i) {
    place("damaged " + std::to_string(i));
    start();
  }
  std::vector<std::string> contents;
  for (const auto& name : damagedNames()) contents.push_back(*readFile(folder() + "/" + name));
  std::sort(contents.begin(), contents.end());
  EXPECT_THAT(contents,
              ElementsAre("damaged 0", "damaged 1", "damaged 2", "damaged 3", "damaged 4"));
}

TEST_F(PropertyListDefaultsTest, FolderInPlaceOfTheFileIsSetAside) {
  ASSERT_TRUE(createFolders(file() + "/inside", 0700));
  auto defaults = start();
  defaults.setBool("a", true);
  EXPECT_EQ(start().object("a"), PropertyList(true));
  EXPECT_THAT(damagedNames(), SizeIs(1));
}

TEST_F(PropertyListDefaultsTest, FileOfAnotherUserIsSetAside) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give a file away";
  place(*kLists.xml(PropertyListDictionary{{"a", true}}));
  ASSERT_EQ(chown(file().c_str(), 65534, 65534), 0);
  EXPECT_EQ(start().object("a"), std::nullopt);
  EXPECT_THAT(damagedNames(), SizeIs(1));
  EXPECT_THAT(log_.lines(), ElementsAre(HasSubstr("it belongs to somebody else")));
}

TEST_F(PropertyListDefaultsTest, UnreadableFileIsSetAside) {
  const OrdinaryUser user(home_.path());
  place(*kLists.xml(PropertyListDictionary{{"a", true}}));
  ASSERT_EQ(chmod(file().c_str(), 0), 0);
  EXPECT_EQ(start().object("a"), std::nullopt);
  EXPECT_THAT(log_.lines(), ElementsAre(HasSubstr("Permission denied")));
}

TEST_F(PropertyListDefaultsTest, LinkInPlaceOfTheFileIsReplacedByTheFirstWrite) {
  const auto foreign = home_.path() + "/foreign.plist";
  const auto bytes = *kLists.xml(PropertyListDictionary{{"a", "linked"}});
  ASSERT_TRUE(replaceFile(foreign, bytes));
  ASSERT_TRUE(createFolders(folder(), 0700));
  ASSERT_EQ(symlink(foreign.c_str(), file().c_str()), 0);
  auto defaults = start();
  EXPECT_EQ(defaults.object("a"), PropertyList("linked"));
  defaults.setObject("a", "own");
  EXPECT_EQ(*readFile(foreign), bytes);
  EXPECT_FALSE(std::filesystem::is_symlink(file()));
  EXPECT_EQ(start().object("a"), PropertyList("own"));
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

TEST_F(PropertyListDefaultsTest, DamagedFileThatCannotBeSetAsideIsNotWrittenOver) {
  const OrdinaryUser user(home_.path());
  place("damaged");
  ASSERT_EQ(chmod(folder().c_str(), 0500), 0);
  auto defaults = start();
  defaults.setBool("a", true);
  EXPECT_EQ(*readFile(file()), "damaged");
  EXPECT_THAT(log_.lines(), ElementsAre(HasSubstr("failed to set it aside: Permission denied"),
                                        StartsWith("Failed to write settings: ")));
  ASSERT_EQ(chmod(folder().c_str(), 0700), 0);
  defaults.setBool("a", true);
  EXPECT_EQ(stored(), PropertyList(PropertyListDictionary{{"a", true}}));
  EXPECT_THAT(damagedNames(), SizeIs(1));
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
