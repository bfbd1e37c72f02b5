// What a monitor was seen to do, in order.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "monitor/DiskImage.h"
#include "platform/Clock.h"

namespace quillmont::testing {

/// One thing done: a command, a pause, a log line, an assignment of the published list ...
struct Deed {
  std::string what;
  std::vector<DiskImage> images = {};

  bool operator==(const Deed&) const = default;
};

/// Where a monitor stands between two steps.
struct Standing {
  std::size_t queued = 0;      ///< tasks of the queue that have not begun
  std::size_t handedOver = 0;  ///< tasks for the main thread
  TimePoint now;
  std::vector<DiskImage> published;

  bool operator==(const Standing&) const = default;
};

/// The list with the names of each image's users in alphabetical order: their own is left open.
inline std::vector<DiskImage> comparable(std::vector<DiskImage> images) {
  for (auto& image : images) {
    std::sort(image.activeProcesses.begin(), image.activeProcesses.end());
  }
  return images;
}

inline std::string pauseText(std::chrono::microseconds duration) {
  return "sleep " + std::to_string(duration.count());
}

}  // namespace quillmont::testing
