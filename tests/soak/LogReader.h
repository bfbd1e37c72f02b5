// The program's log as it comes.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/soak/Finding.h"
#include "tests/support/Program.h"

namespace quillmont::testing {

/// One line that tells of a volume.
struct LogLine {
  enum class Kind { idle, inUse, ejected, stillAttached, failed, other };
  Kind kind = Kind::other;
  std::string label;  ///< of the volume
};

class LogReader {
 public:
  explicit LogReader(Program& program) : program_(program) {}

  /// The lines that have come since the last call; throws a Finding for one of no known kind.
  std::vector<LogLine> take();

  /// How many lines of each kind there were, by the words they begin with; a
  /// tool's own by the whole line.
  const std::map<std::string, long>& counts() const { return counts_; }

 private:
  LogLine read(const std::string& line);

  Program& program_;
  std::size_t at_ = 0;
  std::map<std::string, long> counts_;
};

}  // namespace quillmont::testing
