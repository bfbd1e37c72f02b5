// A notification service that shows nothing and remembers everything.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "platform/posix/Descriptor.h"

struct sd_bus;
struct sd_bus_message;

namespace quillmont::testing {

/// One call of Notify as it came over the bus.
struct RecordedNotification {
  std::string application;
  std::string icon;
  std::string title;
  std::string body;
  std::map<std::string, std::string> hints;  ///< the D-Bus type and the value: "y 1", "s quillmont"
  std::int32_t timeout = 0;                  ///< milliseconds; -1 leaves it to the service
};

/// Owns org.freedesktop.Notifications on a bus and serves it on a thread of its own.
class NotificationRecorder {
 public:
  /// Returns once the name is owned; throws when the bus refuses. `capabilities` is what
  /// GetCapabilities answers.
  explicit NotificationRecorder(const std::string& busAddress,
                                std::vector<std::string> capabilities = {"body"});
  ~NotificationRecorder();
  NotificationRecorder(const NotificationRecorder&) = delete;
  NotificationRecorder& operator=(const NotificationRecorder&) = delete;

  /// Any thread. In the order of the calls.
  std::vector<RecordedNotification> notifications() const;

  /// Waits until `count` notifications have come; false after `limit`.
  bool waitForNotifications(std::size_t count, std::chrono::milliseconds limit) const;

 private:
  void serve();
  int answer(sd_bus_message* call);
  int answerCapabilities(sd_bus_message* call);
  int answerNotify(sd_bus_message* call);

  const std::vector<std::string> capabilities_;
  sd_bus* bus_ = nullptr;  ///< the thread's alone once it runs
  Descriptor stop_;
  mutable std::mutex lock_;
  std::vector<RecordedNotification> notifications_;
  std::thread thread_;
};

}  // namespace quillmont::testing
