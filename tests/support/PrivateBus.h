// A session bus of the test's own.
#pragma once

#include <string>

#include "tests/support/Program.h"

namespace quillmont::testing {

/// A message bus in a temporary folder, with nothing on it and no services to activate. It ends
/// with the object.
class PrivateBus {
 public:
  /// Whether this machine has the bus daemon.
  static bool available();

  /// Returns once the bus accepts connections; throws when it does not come up.
  PrivateBus();

  /// As in DBUS_SESSION_BUS_ADDRESS.
  const std::string& address() const { return address_; }

  /// The daemon dies; everybody on the bus finds himself without one.
  void kill();

  /// The daemon takes connections, and never says a word any more.
  void silence();

  /// The test's environment with this bus for its session's.
  Environment environment() const;

 private:
  TemporaryFolder folder_;
  std::string address_;
  Program daemon_;
};

}  // namespace quillmont::testing
