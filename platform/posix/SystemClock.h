// The machine's own clock.
#pragma once

#include <chrono>
#include <thread>

#include "platform/Clock.h"

namespace quillmont {

class SystemClock : public Clock {
 public:
  TimePoint now() const override { return std::chrono::system_clock::now(); }
  void sleep(std::chrono::microseconds duration) override { std::this_thread::sleep_for(duration); }
};

}  // namespace quillmont
