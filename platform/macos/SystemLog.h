// The system log of a Mac.
#pragma once

#include <string_view>

#include "platform/Log.h"

namespace quillmont {

/// Through NSLog: to the unified log, and to standard error where somebody reads it. Control
/// characters are escaped, so that a line stays a line.
class SystemLog : public Log {
 public:
  void write(std::string_view line) override;
};

}  // namespace quillmont
