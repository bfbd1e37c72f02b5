// What the soak may find.
#pragma once

#include <chrono>
#include <stdexcept>

namespace quillmont::testing {

/// Something that must never be. Ends the soak.
class Finding : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

using Steady = std::chrono::steady_clock;

/// How much longer everything takes under a sanitizer.
#ifdef QUILLMONT_SOAK_SANITIZED
constexpr int kSlowness = 3;
#else
constexpr int kSlowness = 1;
#endif

}  // namespace quillmont::testing
