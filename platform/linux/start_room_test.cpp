#include "platform/linux/start_room.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <system_error>

#include "platform/posix/files.h"
#include "tests/support/Program.h"
#include "tests/support/forked.h"

namespace quillmont {
namespace {

using ::testing::EndsWith;
using testing::forked;

/// Ends the process with what `fail` throws; without a core file.
template <class Fail>
void endBy(Fail fail) {
  const rlimit none = {};
  setrlimit(RLIMIT_CORE, &none);
  endWithALogLineWithoutRoom();
  [&]() noexcept { fail(); }();
}

TEST(StartRoom, UncaughtErrorOfTheSystemIsOneLogLineAndStatusOne) {
  const testing::TemporaryFolder folder;
  const auto log = folder.path() + "/log";
  EXPECT_EQ(
      forked([&] {
        ASSERT_TRUE(freopen(log.c_str(), "w", stderr));
        endBy([] { throw std::system_error(EMFILE, std::generic_category(), "timerfd_create"); });
      }),
      1);
  const auto lines = readFile(log);
  ASSERT_TRUE(lines);
  EXPECT_THAT(*lines, EndsWith("Quillmont cannot go on: timerfd_create: Too many open files\n"));
  EXPECT_EQ(lines->find('\n'), lines->size() - 1);
}

TEST(StartRoom, UncaughtProgrammingErrorStillAborts) {
  EXPECT_EQ(forked([] { endBy([] { throw std::logic_error("a planted one"); }); }), 128 + SIGABRT);
}

TEST(StartRoom, ThreadsThatCanBeHadAreGoneAgain) {
  requireThreads(4);
  requireThreads(0);
}

TEST(StartRoom, ThreadsThatCannotBeHadAreAnError) {
  EXPECT_EQ(forked([] {
              // The superuser may have as many as he likes.
              ASSERT_TRUE(geteuid() != 0 || setuid(65534) == 0);
              const rlimit one = {1, 1};
              ASSERT_EQ(setrlimit(RLIMIT_NPROC, &one), 0);
              EXPECT_THROW(requireThreads(4), std::system_error);
            }),
            0);
}

}  // namespace
}  // namespace quillmont
