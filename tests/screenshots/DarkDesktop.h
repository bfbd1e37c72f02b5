// The desktop portal of a user who prefers dark colours.
#pragma once

#include <string>
#include <thread>

#include "platform/posix/Descriptor.h"

struct sd_bus;

namespace quillmont::testing {

/// Owns org.freedesktop.portal.Desktop on a bus for as long as it lives, and answers its one
/// setting. Programs that run already learn of it when the name gets its owner. Served on a thread
/// of its own.
class DarkDesktop {
 public:
  /// Returns once the name is owned; throws when the bus refuses.
  explicit DarkDesktop(const std::string& busAddress);
  ~DarkDesktop();
  DarkDesktop(const DarkDesktop&) = delete;
  DarkDesktop& operator=(const DarkDesktop&) = delete;

 private:
  void serve();

  sd_bus* bus_ = nullptr;  ///< the thread's alone once it runs
  Descriptor stop_;
  std::thread thread_;
};

}  // namespace quillmont::testing
