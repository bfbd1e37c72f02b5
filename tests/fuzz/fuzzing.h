// What every fuzzer is made of. One file defines tryInput(); it is built twice: with libFuzzer,
// which makes up inputs, and with replay.cpp, which goes through the kept ones in the ordinary
// tests.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

/// As libFuzzer calls it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace quillmont::testing {

/// Hands `input` to a reader and holds the answer against what the reader promises.
void tryInput(std::string_view input);

/// Ends the process, and so makes a finding of the input, where a promise does not hold.
inline void require(bool holds, const char* promise) {
  if (holds) return;
  std::fprintf(stderr, "broken promise: %s\n", promise);
  std::abort();
}

/// Cuts the bytes before the next `separator` off `input`, or all of it. NUL is the one byte that
/// no path holds.
inline std::string_view takePart(std::string_view& input, char separator = '\0') {
  const auto part = input.substr(0, input.find(separator));
  input.remove_prefix(std::min(input.size(), part.size() + 1));
  return part;
}

}  // namespace quillmont::testing
