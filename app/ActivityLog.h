// Tells in the system log when an image comes into use and when it falls idle.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "monitor/DiskImage.h"
#include "platform/Observable.h"

namespace quillmont {

class Log;
class QuillmontDaemon;

/// Watches the monitor's published list for as long as it lives, and writes one line whenever an
/// image is first seen, or changes, as in use or as idle. Main thread.
class ActivityLog {
 public:
  ActivityLog(QuillmontDaemon& daemon, Log& log);

 private:
  void review(const std::vector<DiskImage>& images);

  Log& log_;
  std::map<std::string, bool> inUse_;  ///< by image path, as it was logged last
  Subscription subscription_;
};

}  // namespace quillmont
