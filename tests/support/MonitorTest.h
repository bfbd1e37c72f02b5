// A running monitor on a system in memory.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/support/TestHost.h"

namespace quillmont::testing {

class MonitorTest : public ::testing::Test {
 protected:
  /// The monitor as it stands after its first cycle.
  OpenMonitor& start() {
    monitor_ = QuillmontDaemon::make<OpenMonitor>(system.host(), config);
    system.settle();
    return *monitor_;
  }

  void release() { monitor_.reset(); }

  double idle(std::size_t position = 0) {
    return monitor_->mountedImages().at(position).idleSeconds;
  }

  /// Volume names in the order of the list.
  std::vector<std::string> names() {
    std::vector<std::string> result;
    for (const auto& image : monitor_->mountedImages()) result.push_back(image.volumeName);
    return result;
  }

  /// How often the disk-image tool was asked to detach.
  std::size_t detaches() {
    std::size_t count = 0;
    for (const auto& command : system.processes.launchesOf("/usr/bin/hdiutil")) {
      count += command.arguments.front() == "detach" ? 1 : 0;
    }
    return count;
  }

  TestHost system;
  FakeDiskImages images{system};
  ConfigManager config{system.host()};
  std::shared_ptr<OpenMonitor> monitor_;
};

}  // namespace quillmont::testing
