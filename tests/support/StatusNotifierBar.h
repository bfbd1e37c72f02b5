// A status bar of the message bus that draws nothing: programs announce their items to it.
#pragma once

#include <chrono>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "platform/posix/Descriptor.h"

struct sd_bus;
struct sd_bus_message;

namespace quillmont::testing {

/// Owns org.kde.StatusNotifierWatcher on a bus, says that a host is there, and serves the name on a
/// thread of its own.
class StatusNotifierBar {
 public:
  /// Returns once the name is owned; throws when the bus refuses.
  explicit StatusNotifierBar(const std::string& busAddress);
  ~StatusNotifierBar();
  StatusNotifierBar(const StatusNotifierBar&) = delete;
  StatusNotifierBar& operator=(const StatusNotifierBar&) = delete;

  /// Waits until an item has been announced: its service on the bus.
  std::optional<std::string> waitForItem(std::chrono::milliseconds limit) const;

  /// Has the item of a program activated, as a click on it does; false if it does not answer.
  static bool activate(const std::string& busAddress, const std::string& item);

 private:
  void serve();
  int answer(sd_bus_message* call);
  int answerProperties(sd_bus_message* call);

  sd_bus* bus_ = nullptr;  ///< the thread's alone once it runs
  Descriptor stop_;
  mutable std::mutex lock_;
  std::string item_;
  std::thread thread_;
};

}  // namespace quillmont::testing
