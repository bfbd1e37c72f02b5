// A desktop's notification service for the demo: prints what it is asked to show, until it is
// ended. The bus is the session's.

#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "tests/support/NotificationRecorder.h"

int main() {
  const char* const address = std::getenv("DBUS_SESSION_BUS_ADDRESS");
  if (!address) return 1;
  const quillmont::testing::NotificationRecorder recorder(address);
  for (std::size_t shown = 0;; ++shown) {
    while (!recorder.waitForNotifications(shown + 1, std::chrono::hours(1))) {
    }
    const auto notification = recorder.notifications().at(shown);
    std::printf("[notification] %s — %s\n", notification.title.c_str(), notification.body.c_str());
    std::fflush(stdout);
  }
}
