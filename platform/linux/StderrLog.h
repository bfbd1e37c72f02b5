// The log on standard error, where the desktop's session manager collects it.
#pragma once

#include <unistd.h>

#include <string>
#include <string_view>

#include "platform/Clock.h"
#include "platform/Log.h"

namespace quillmont {

/// "2026-11-21 09:30:00.123 Quillmont[1234] text" and a newline, in local time. Control characters
/// of `text` are escaped.
std::string logLine(TimePoint time, int processIdentifier, std::string_view text);

/// One write a line, so that the lines of several threads and processes do not mix. A line that
/// cannot be written is lost.
class StderrLog : public Log {
 public:
  explicit StderrLog(int descriptor = STDERR_FILENO) : descriptor_(descriptor) {}
  void write(std::string_view line) override;

 private:
  int descriptor_;
};

}  // namespace quillmont
