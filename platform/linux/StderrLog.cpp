#include "platform/linux/StderrLog.h"

#include <time.h>

#include <chrono>
#include <cstdio>

#include "platform/posix/log_text.h"

namespace quillmont {

std::string logLine(TimePoint time, int processIdentifier, std::string_view text) {
  using std::chrono::milliseconds;
  const auto sinceEpoch = std::chrono::floor<milliseconds>(time.time_since_epoch());
  const auto second = std::chrono::floor<std::chrono::seconds>(sinceEpoch);
  const time_t timestamp = second.count();
  tm local = {};
  localtime_r(&timestamp, &local);
  char date[64];
  const auto length = strftime(date, sizeof date, "%Y-%m-%d %H:%M:%S", &local);
  char rest[64];
  std::snprintf(rest, sizeof rest, ".%03d Quillmont[%d] ",
                static_cast<int>((sinceEpoch - second).count()), processIdentifier);
  std::string line(date, length);
  line += rest;
  line += textOfOneLine(text);
  line += '\n';
  return line;
}

void StderrLog::write(std::string_view text) {
  const auto line = logLine(std::chrono::system_clock::now(), getpid(), text);
  [[maybe_unused]] const auto written = ::write(descriptor_, line.data(), line.size());
}

}  // namespace quillmont
