// A log that several threads write.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "platform/Log.h"

namespace quillmont::testing {

/// Any thread.
class SharedLog : public Log {
 public:
  void write(std::string_view line) override {
    const std::lock_guard guard(lock_);
    lines_.emplace_back(line);
  }

  std::vector<std::string> lines() const {
    const std::lock_guard guard(lock_);
    return lines_;
  }

 private:
  mutable std::mutex lock_;
  std::vector<std::string> lines_;
};

}  // namespace quillmont::testing
