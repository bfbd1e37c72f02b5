// Wall-clock time and sleeping.
#pragma once

#include <chrono>
#include <cstdint>

namespace quillmont {

using TimePoint = std::chrono::system_clock::time_point;

/// From `start` to `end` in seconds; negative when the clock was set back between them.
inline double secondsBetween(TimePoint start, TimePoint end) {
  return std::chrono::duration<double>(end - start).count();
}

/// Any thread.
class Clock {
 public:
  virtual ~Clock() = default;
  virtual TimePoint now() const = 0;
  /// Blocks the calling thread for at least this long.
  virtual void sleep(std::chrono::microseconds duration) = 0;
};

}  // namespace quillmont
