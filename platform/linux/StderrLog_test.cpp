#include "platform/linux/StderrLog.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <time.h>

#include <string>
#include <thread>
#include <vector>

#include "platform/posix/Descriptor.h"
#include "tests/support/forked.h"

namespace quillmont {
namespace {

TimePoint atMilliseconds(long long sinceEpoch) {
  return TimePoint(std::chrono::milliseconds(sinceEpoch));
}

TEST(StderrLog, StampsALineWithTheLocalTime) {
  EXPECT_EQ(testing::forked([] {
              setenv("TZ", "CST-8", 1);
              tzset();
              EXPECT_EQ(logLine(atMilliseconds(1795224600123), 1234, "text"),
                        "2026-11-21 09:30:00.123 Quillmont[1234] text\n");
              setenv("TZ", "UTC", 1);
              tzset();
              EXPECT_EQ(logLine(atMilliseconds(1795224600000), 1, ""),
                        "2026-11-21 01:30:00.000 Quillmont[1] \n");
              EXPECT_EQ(logLine(atMilliseconds(-1), 1, "x"),
                        "1969-12-31 23:59:59.999 Quillmont[1] x\n");
            }),
            0);
}

TEST(StderrLog, AVolumesNameCannotForgeALine) {
  const auto line =
      logLine(atMilliseconds(0), 1, std::string("a\nb\tc\x1b[2J\x7f\r\\") + '\0' + "磁盘");
  EXPECT_TRUE(line.ends_with("] a\\nb\\x09c\\x1b[2J\\x7f\\x0d\\\\x00磁盘\n")) << line;
}

TEST(StderrLog, OneCallIsOneWrite) {
  int ends[2];
  ASSERT_EQ(pipe2(ends, O_CLOEXEC | O_DIRECT), 0);  // a pipe that keeps writes apart
  const Descriptor readEnd(ends[0]), writeEnd(ends[1]);
  StderrLog log(writeEnd.get());
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 2; ++thread) {
    threads.emplace_back([&] { log.write("one line"), log.write("one line"); });
  }
  for (auto& thread : threads) thread.join();
  for (int line = 0; line < 4; ++line) {
    char buffer[200];
    const auto length = read(readEnd.get(), buffer, sizeof buffer);
    ASSERT_GT(length, 0);
    const std::string text(buffer, static_cast<std::size_t>(length));
    EXPECT_TRUE(text.ends_with("Quillmont[" + std::to_string(getpid()) + "] one line\n")) << text;
    EXPECT_EQ(text.find('\n'), text.size() - 1);
  }
}

TEST(StderrLog, ALineThatCannotBeWrittenIsLost) {
  StderrLog log(-1);
  log.write("nobody reads this");
}

}  // namespace
}  // namespace quillmont
