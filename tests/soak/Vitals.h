// What the program takes of the system, watched from outside.
#pragma once

#include <sys/types.h>

#include <map>
#include <string>
#include <vector>

#include "tests/soak/Finding.h"

namespace quillmont::testing {

/// Descriptors, threads and resident memory of one process, once a second; and whether it leaves
/// children that have ended unburied.
class Vitals {
 public:
  explicit Vitals(pid_t pid) : pid_(pid) {}

  /// Takes one sample; throws a Finding for a zombie that has been there for long.
  void sample();

  /// What came between the first fifth, which is left out, and the end. Tools come and go, and so
  /// do their descriptors: the growth is that of the least of the first and the last minute.
  struct Growth {
    long least = 0;  ///< at the end
    long peak = 0;
    long growth = 0;
  };
  Growth descriptors() const { return growthOf(&Sample::descriptors); }
  Growth threads() const { return growthOf(&Sample::threads); }
  Growth kibibytes() const { return growthOf(&Sample::kibibytes); }

  /// Throws a Finding for growth that is no chance.
  void judge() const;

 private:
  struct Sample {
    long descriptors = 0;
    long threads = 0;
    long kibibytes = 0;
  };
  Growth growthOf(long Sample::*figure) const;
  void lookForZombies();

  const pid_t pid_;
  std::vector<Sample> samples_;
  std::map<std::string, Steady::time_point> zombies_;  ///< since when they were seen
};

}  // namespace quillmont::testing
