// What one look at all processes has found out about every image, kept for the questions that
// follow in the same series: the cycle asks about its images one after another.
//
// No answer must hide a user whom a look of one's own would have found, but for one who came since
// the series began. So a kept answer is given
//  - only to the process that asked the first question, and only if that said that it asks in
//    series: who starts the tool by hand always gets a look of their own;
//  - once for each volume: who asks again wants to know anew, and with that look a new series
//    begins;
//  - while the mount table is the same, byte for byte;
//  - within less than a second, counted from the beginning of the look, also through a sleep of
//    the machine.
// Whatever does not fit, or cannot be read, means a new look.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillmont {

/// How long after its beginning a look may answer: a second, less what it takes to hand the answer
/// on. Time enough for a thousand processes and many images on a busy machine.
inline constexpr std::chrono::milliseconds kLookIsFresh(900);

/// What is said about the volume that is asked for as `path`.
struct VolumeAnswer {
  std::string path;
  std::string report;
};

class SharedLook {
 public:
  /// The file, and who asks: everything that must be the same for an answer to be shared.
  SharedLook(std::string file, std::string asker)
      : file_(std::move(file)), asker_(std::move(asker)) {}

  /// For the parent of the calling process, which sees this mount table. Nothing if it does not ask
  /// in series, or if there is no runtime folder.
  static std::optional<SharedLook> ofParent(std::string_view mountTable);

  /// Takes the answer about `path` out, if there is one that may be given.
  std::optional<std::string> take(std::string_view path, std::chrono::nanoseconds now) const;

  /// Drops what there is: before a new look.
  void drop() const;

  /// Keeps the answers of a look that began at `began`, if that is possible.
  void keep(const std::vector<VolumeAnswer>& answers, std::chrono::nanoseconds began) const;

 private:
  std::string file_;
  std::string asker_;
};

/// Time that passes while the machine sleeps as well, and that nobody can set.
std::chrono::nanoseconds timeSinceBoot();

}  // namespace quillmont
