#include "platform/macos/SystemLog.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <string>

#include "platform/posix/Descriptor.h"
#include "platform/posix/files.h"
#include "tests/support/Program.h"

namespace quillmont {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;

/// What standard error gets while `write` runs.
template <class Write>
std::string standardError(Write write) {
  const testing::TemporaryFolder folder;
  const auto path = folder.path() + "/log";
  const Descriptor saved(dup(STDERR_FILENO));
  {
    const Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
    dup2(file.get(), STDERR_FILENO);
  }
  write();
  dup2(saved.get(), STDERR_FILENO);
  return *readFile(path);
}

TEST(SystemLog, WritesALineWithItsOwnPercentSigns) {
  const auto text = standardError(
      [] { SystemLog().write("Failed to eject: /Volumes/100%@ %s %n \u78c1\u76d8. Code: 16"); });
  EXPECT_THAT(text, HasSubstr("Failed to eject: /Volumes/100%@ %s %n \u78c1\u76d8. Code: 16"));
  EXPECT_THAT(text, EndsWith("\n"));
}

TEST(SystemLog, AVolumesNameCannotForgeALine) {
  const auto text = standardError([] { SystemLog().write("one\ntwo\x1b[2J"); });
  EXPECT_THAT(text, HasSubstr("one\\ntwo\\x1b[2J"));
  EXPECT_THAT(text, Not(HasSubstr("\ntwo")));
}

TEST(SystemLog, TextThatIsNoUtf8IsNotLost) {
  const auto text = standardError([] { SystemLog().write("caf\xE9"); });
  EXPECT_THAT(text, HasSubstr("caf\u00e9"));
}

}  // namespace
}  // namespace quillmont
