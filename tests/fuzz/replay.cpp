// Runs a fuzzer over kept inputs, without libFuzzer: every file of the folders that are named.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <memory>
#include <string>

#include "platform/posix/files.h"
#include "tests/fuzz/fuzzing.h"

namespace {

/// The bytes lie in memory of just their size, so that a read past their end is seen.
void replay(const std::string& bytes) {
  const auto copy = std::make_unique<std::uint8_t[]>(bytes.size());
  std::copy(bytes.begin(), bytes.end(), copy.get());
  LLVMFuzzerTestOneInput(copy.get(), bytes.size());
}

/// How many there are; a name is told first, for whoever has to find the one that failed.
int replayFolder(const char* folder) {
  int count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    std::printf("%s\n", entry.path().c_str());
    std::fflush(stdout);
    const auto bytes = quillmont::readFile(entry.path());
    quillmont::testing::require(static_cast<bool>(bytes), "every seed can be read");
    replay(*bytes);
    ++count;
  }
  return count;
}

}  // namespace

int main(int argc, char* argv[]) try {
  replay("");
  int count = 0;
  for (int i = 1; i < argc; ++i) count += replayFolder(argv[i]);
  std::printf("%d inputs\n", count);
  return count > 0 ? 0 : 1;
} catch (const std::exception& error) {
  std::fprintf(stderr, "%s\n", error.what());
  return 1;
}
