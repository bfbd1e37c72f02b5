#include <cstdint>

#include "tests/fuzz/fuzzing.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // There may be no data at all, and then no address either.
  if (size == 0) data = reinterpret_cast<const std::uint8_t*>("");
  quillmont::testing::tryInput({reinterpret_cast<const char*>(data), size});
  return 0;
}
