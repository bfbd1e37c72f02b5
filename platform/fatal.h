// The end of a process that can no longer trust itself.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "platform/Log.h"

namespace quillmont {

/// For states that only a programming error or a broken system can bring about.
[[noreturn]] inline void fatalError(Log& log, std::string_view reason) {
  log.write(reason);
  std::abort();
}

/// The same where there is no log at hand.
[[noreturn]] inline void fatalError(const char* reason) {
  std::fprintf(stderr, "Quillmont: %s\n", reason);
  std::abort();
}

}  // namespace quillmont
