// The system log.
#pragma once

#include <string>
#include <string_view>

namespace quillmont {

/// Any thread. One call is one line, stamped with the time by the host.
class Log {
 public:
  virtual ~Log() = default;
  virtual void write(std::string_view line) = 0;
};

/// How log lines spell a boolean.
inline const char* boolText(bool value) {
  return value ? "true" : "false";
}

}  // namespace quillmont
