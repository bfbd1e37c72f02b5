// Tells programs where accessibility is to be had.
#pragma once

#include <string>
#include <thread>

#include "platform/posix/Descriptor.h"

struct sd_bus;

namespace quillmont::testing {

/// Owns org.a11y.Bus on a session bus, and names that very bus as the one for accessibility: the
/// system's own service would start a second bus daemon, which outlives a test that is killed.
/// Served on a thread of its own.
class AccessibilityService {
 public:
  /// Returns once the name is owned; throws when the bus refuses.
  explicit AccessibilityService(std::string busAddress);
  ~AccessibilityService();
  AccessibilityService(const AccessibilityService&) = delete;
  AccessibilityService& operator=(const AccessibilityService&) = delete;

 private:
  void serve();

  const std::string address_;
  sd_bus* bus_ = nullptr;  ///< the thread's alone once it runs
  Descriptor stop_;
  std::thread thread_;
};

}  // namespace quillmont::testing
