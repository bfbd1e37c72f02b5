// What was written into one image, so that it can be told whether all of it is still there.
#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace quillmont::testing {

class WrittenFiles {
 public:
  /// Writes a file of random bytes, anew if there is one, closes it, and remembers it. `device` is
  /// that of the volume: a file that comes to lie anywhere else, as when the volume has just gone
  /// from its folder, is taken away and false is the answer. Throws a Finding when the volume takes
  /// the file but not its bytes.
  bool write(const std::string& volume, std::uint64_t device, std::uint64_t seed, bool synced);

  /// Compares every file with what was written; the number of bytes. Throws a Finding for the first
  /// difference.
  long verify(const std::string& volume) const;

  void forget() { seeds_.clear(); }

 private:
  std::map<std::string, std::uint64_t> seeds_;  ///< by the name of the file
};

}  // namespace quillmont::testing
